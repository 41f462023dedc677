// SPDX-License-Identifier: Apache-2.0
#include "fileinfoputinplace.h"

#include "fileinfo.h"

bool FileInfoPutInPlace::Delete(const std::wstring& name) {
    return FileInfo::Delete(name);
}

bool FileInfoPutInPlace::Rename(const std::wstring& from, const std::wstring& to) {
    return FileInfo::Rename(from, to);
}

int FileInfoPutInPlace::LastError() const {
    return FileInfo::LastError();
}

std::wstring FileInfoPutInPlace::LastErrorText() const {
    return FileInfo::LastErrorText();
}
