// SPDX-License-Identifier: Apache-2.0
#pragma once
// FTP operations on an instrument outside a file transfer, for callers that need what the folder back
// end does over the link: an upload to a temporary name followed by a rename ("___temp@@" + name),
// and removing the temporary file when the upload fails.
//
// `host` is the instrument's host text (mapped through get_actual_host like NETFileImpl); `folder` is
// the folder on the instrument ("/Data", empty for the login folder); names are relative to it.
// Each call opens its own connection, blocks (bounded by the FTP time limits) and closes it. On
// failure `error` gets an FTP back-end error number (ftperror.h) and `text` the server's message;
// either may be null.
#include <chrono>
#include <string>

bool FtpRename(const std::wstring& host, const std::wstring& folder, const std::wstring& from,
               const std::wstring& to, int* error, std::wstring* text);
bool FtpDelete(const std::wstring& host, const std::wstring& folder, const std::wstring& name, int* error,
               std::wstring* text);

// How long an FTP transfer may go without a byte or a reply moving while a caller waits on it before
// it fails with kFtpErrTimedOut. 30 s unless set; process-wide.
void SetFtpStallTimeout(std::chrono::milliseconds limit);
std::chrono::milliseconds FtpStallTimeout();
