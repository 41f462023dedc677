#pragma once
// Error numbers of the FTP back end. A failed FTP operation keeps one number:
// - 9 (no open file) and 22 (bad argument), as every back end;
// - the server's reply code (400-599) when the server refused the command, e.g. 530 login refused,
//   550 file not found;
// - kFtpCurlErrorBase + the libcurl result code when the failure happened without an error reply
//   (12007 could not connect, 12028 timed out, 12018 partial file, 12056 receive failure, ...).
#include <string>

inline constexpr int kFtpCurlErrorBase = 12000;
// libcurl's result codes stay below this; numbers from kFtpCurlErrorBase up to here are ours.
inline constexpr int kFtpCurlErrorLimit = 12200;
// The ones a caller may want to tell apart: the instrument is not reachable over FTP.
inline constexpr int kFtpErrCannotResolve = kFtpCurlErrorBase + 6;
inline constexpr int kFtpErrCannotConnect = kFtpCurlErrorBase + 7;
inline constexpr int kFtpErrTimedOut = kFtpCurlErrorBase + 28;

// A short meaning of an FTP back-end error number ("file not found or not accessible"); empty when the
// number is not one of the FTP numbers above.
std::wstring FtpErrorMeaning(int code);
