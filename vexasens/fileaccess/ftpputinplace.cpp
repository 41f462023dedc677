// SPDX-License-Identifier: Apache-2.0
#include "ftpputinplace.h"

#include "ftpsession.h"
#include "remotename.h"
#include "winsockerror.h"

bool FtpPutInPlace::Fail(int error, const std::wstring& text) {
    m_error = error;
    m_text = text;
    return false;
}

bool FtpPutInPlace::Delete(const std::wstring& name) {
    std::wstring host, folder, file;
    if (!ParseFilename(name, &folder, &file, &host) || host.empty() || file.empty())
        return Fail(kErrInvalid);
    m_error = 0;
    m_text.clear();
    return FtpDelete(host, folder, file, &m_error, &m_text);
}

bool FtpPutInPlace::Rename(const std::wstring& from, const std::wstring& to) {
    std::wstring host, folder, file, toHost, toFolder, toFile;
    if (!ParseFilename(from, &folder, &file, &host) || !ParseFilename(to, &toFolder, &toFile, &toHost) ||
        host.empty() || file.empty() || toFile.empty() || host != toHost || folder != toFolder)
        return Fail(kErrInvalid);
    m_error = 0;
    m_text.clear();
    return FtpRename(host, folder, file, toFile, &m_error, &m_text);
}
