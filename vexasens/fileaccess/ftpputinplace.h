// SPDX-License-Identifier: Apache-2.0
#pragma once
// Putting a copy in place on an instrument's FTP server, for a file that went there over FTP: the
// link's folder operations may be out of reach exactly when FTP carried the file. Each call opens its
// own FTP connection (ftpsession.h). Names are "@HOST:PATH"; a rename stays within one folder.
#include "putinplace.h"

class FtpPutInPlace : public IPutInPlace {
public:
    bool Delete(const std::wstring& name) override;
    bool Rename(const std::wstring& from, const std::wstring& to) override;
    int LastError() const override { return m_error; }
    std::wstring LastErrorText() const override { return m_text; }

private:
    bool Fail(int error, const std::wstring& text = {});

    int m_error = 0;
    std::wstring m_text;
};
