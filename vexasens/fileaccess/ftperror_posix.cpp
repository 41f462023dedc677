// SPDX-License-Identifier: Apache-2.0
#include "ftperror.h"

#include "text.h"

#include <curl/curl.h>

#include <cwctype>

const int kFtpErrCannotResolve = kFtpCurlErrorBase + CURLE_COULDNT_RESOLVE_HOST;
const int kFtpErrCannotConnect = kFtpCurlErrorBase + CURLE_COULDNT_CONNECT;
const int kFtpErrTimedOut = kFtpCurlErrorBase + CURLE_OPERATION_TIMEDOUT;

std::wstring FtpErrorMeaning(int code) {
    if (code >= kFtpCurlErrorBase && code < kFtpCurlErrorLimit) {
        const int curlCode = code - kFtpCurlErrorBase;
        if (curlCode <= 0 || curlCode >= CURL_LAST)
            return {};
        std::wstring meaning = FromUtf8(curl_easy_strerror(static_cast<CURLcode>(curlCode)));
        if (!meaning.empty())
            meaning[0] = static_cast<wchar_t>(towlower(meaning[0]));
        return L"FTP: " + meaning;
    }
    return FtpReplyMeaning(code);
}

bool IsFtpUnreachableError(int code) {
    return code == kFtpErrCannotResolve || code == kFtpErrCannotConnect || code == kFtpErrTimedOut;
}
