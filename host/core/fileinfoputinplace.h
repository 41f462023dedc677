// SPDX-License-Identifier: Apache-2.0
#pragma once
// Putting a copy in place through FileInfo, which picks the local back end for local names and the
// registered remote one (the instrument's link) for "@HOST:PATH" names.
#include "putinplace.h"

class FileInfoPutInPlace : public IPutInPlace {
public:
    bool Delete(const std::wstring& name) override;
    bool Rename(const std::wstring& from, const std::wstring& to) override;
    int LastError() const override;
    std::wstring LastErrorText() const override;
};
