// SPDX-License-Identifier: Apache-2.0
#include "ftperror.h"

// Meanings of the FTP reply codes that refuse a command (RFC 959 and RFC 3659).
std::wstring FtpReplyMeaning(int code) {
    switch (code) {
    case 421:
        return L"FTP service not available, connection closed";
    case 425:
        return L"FTP server cannot open the data connection";
    case 426:
        return L"FTP data connection closed, transfer aborted";
    case 430:
        return L"invalid FTP user name or password";
    case 450:
        return L"file busy or not available on the FTP server";
    case 451:
        return L"FTP server error while processing the request";
    case 452:
        return L"insufficient storage on the FTP server";
    case 500:
        return L"FTP command not understood";
    case 501:
        return L"FTP command has bad arguments";
    case 502:
        return L"FTP command not implemented by the server";
    case 503:
        return L"FTP commands in a bad sequence";
    case 504:
        return L"FTP command parameter not implemented";
    case 530:
        return L"FTP login refused";
    case 532:
        return L"FTP account needed to store files";
    case 550:
        return L"file not found or not accessible on the FTP server";
    case 551:
        return L"FTP page type unknown";
    case 552:
        return L"FTP storage allocation exceeded";
    case 553:
        return L"file name not allowed by the FTP server";
    default:
        break;
    }
    if (code >= 400 && code < 500)
        return L"FTP server refused the command for now";
    if (code >= 500 && code < 600)
        return L"FTP server refused the command";
    return {};
}
