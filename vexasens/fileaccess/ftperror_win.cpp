// SPDX-License-Identifier: Apache-2.0
#include "ftperror.h"

#include <windows.h>
#include <wininet.h>

const int kFtpErrCannotResolve = ERROR_INTERNET_NAME_NOT_RESOLVED;
const int kFtpErrCannotConnect = ERROR_INTERNET_CANNOT_CONNECT;
const int kFtpErrTimedOut = ERROR_INTERNET_TIMEOUT;

std::wstring FtpErrorMeaning(int code) {
    switch (code) {
    case ERROR_INTERNET_OUT_OF_HANDLES:
        return L"FTP: out of handles";
    case ERROR_INTERNET_TIMEOUT:
        return L"FTP: timed out";
    case ERROR_INTERNET_EXTENDED_ERROR:
        return L"FTP server refused the command";
    case ERROR_INTERNET_INTERNAL_ERROR:
        return L"FTP: internal error";
    case ERROR_INTERNET_INVALID_URL:
        return L"FTP: invalid address";
    case ERROR_INTERNET_NAME_NOT_RESOLVED:
        return L"FTP: host name not resolved";
    case ERROR_INTERNET_SHUTDOWN:
        return L"FTP: shutting down";
    case ERROR_INTERNET_INCORRECT_USER_NAME:
        return L"FTP: user name refused";
    case ERROR_INTERNET_INCORRECT_PASSWORD:
        return L"FTP: password refused";
    case ERROR_INTERNET_LOGIN_FAILURE:
        return L"FTP login refused";
    case ERROR_INTERNET_INVALID_OPERATION:
        return L"FTP: invalid operation";
    case ERROR_INTERNET_OPERATION_CANCELLED:
        return L"FTP: operation cancelled";
    case ERROR_INTERNET_INCORRECT_HANDLE_TYPE:
    case ERROR_INTERNET_INCORRECT_HANDLE_STATE:
        return L"FTP: no transfer open in that direction";
    case ERROR_INTERNET_CANNOT_CONNECT:
        return L"FTP: could not connect to the server";
    case ERROR_INTERNET_CONNECTION_ABORTED:
        return L"FTP: connection aborted";
    case ERROR_INTERNET_CONNECTION_RESET:
        return L"FTP: connection reset";
    case ERROR_FTP_TRANSFER_IN_PROGRESS:
        return L"FTP: a transfer is still in progress";
    case ERROR_FTP_DROPPED:
        return L"FTP: transfer dropped";
    case ERROR_FTP_NO_PASSIVE_MODE:
        return L"FTP: passive mode not available";
    default:
        break;
    }
    if (code > kFtpCurlErrorBase && code < kFtpCurlErrorLimit)
        return L"FTP: WinINet error";
    return FtpReplyMeaning(code);
}

bool IsFtpUnreachableError(int code) {
    return code == kFtpErrCannotResolve || code == kFtpErrCannotConnect || code == kFtpErrTimedOut;
}
