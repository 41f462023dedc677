// SPDX-License-Identifier: Apache-2.0
#pragma once
// Names of files on an instrument: "@HOST:PATH", e.g. "@10.0.0.5:/Data/run1.vxs". The host text holds
// no ':'. Instrument paths always use '/'. Anything else is a local (workstation) name.
#include <string>

bool IsRemoteFilename(const std::wstring& name);

// Splits "@HOST:PATH" into host and path; false for a local name or a missing ':'.
bool SplitRemoteName(const std::wstring& name, std::wstring* host, std::wstring* path);

// Splits a file name into its folder (no trailing separator except for the root "/"), its file name
// and its host. Returns false for a local name; folder and file name are then still filled, split at
// the last native or '/' separator, and the host is emptied. Any output may be null.
bool ParseFilename(const std::wstring& name, std::wstring* folder, std::wstring* file, std::wstring* host);

// The parts of a name as ParseFilename splits it: the last part ("b" of "/a/b" or "@h:/a/b") and the
// folder ("/a"; "/" for a file in the root; empty for a bare name). A trailing separator makes the
// last part empty.
std::wstring LastPathPart(const std::wstring& name);
std::wstring FolderOfPath(const std::wstring& name);

// Drops trailing '/' (and, on Windows, native separators); a root keeps its own.
std::wstring WithoutTrailingSlash(std::wstring path);

// Joins folder and name with '/' (no doubled separator) and prefixes "@HOST:" when a host is given.
std::wstring MakeFilename(const std::wstring& folder, const std::wstring& file, const std::wstring& host);

// Joins a folder and a name with the given separator, without doubling it.
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name, wchar_t separator);

// Whether a name that another side listed is one plain entry of its folder: not empty, not "." or "..",
// and without '/', '\\' or NUL. Only such a name may be joined onto a destination folder; any other
// could lead out of it (an instrument's listing is not to be trusted that far).
bool IsPlainEntryName(const std::wstring& name);

// The name to connect to over FTP for a host: the setting FTP/HostMap/<host>, else the host itself.
std::wstring get_actual_host(const std::wstring& host);
