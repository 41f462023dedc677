// SPDX-License-Identifier: Apache-2.0
#include "wholefile.h"

#include "remotename.h"
#include "stdiofile.h"
#include "winsockerror.h"

namespace {
constexpr int kReadBlock = 65536;
}

bool ReadWholeFile(const std::wstring& name, int64_t maxSize, std::string* bytes, WholeFileError* error) {
    bytes->clear();
    StdioFile file;
    auto fail = [&](int number, std::wstring text) {
        *error = WholeFileError{number, std::move(text)};
        bytes->clear();
        return false;
    };
    if (!file.Open(name, L"rb"))
        return fail(file.GetError(), file.GetErrorText());
    // Room for the whole file at once where its length is known, so it is not copied while it grows.
    const int length = IsRemoteFilename(name) ? -1 : file.GetLength();
    if (length > 0 && length <= maxSize)
        bytes->reserve(static_cast<size_t>(length));
    std::string block(kReadBlock, '\0');
    for (;;) {
        const int count = file.Read(block.data(), kReadBlock);
        if (count < 0)
            return fail(file.GetError(), file.GetErrorText());
        if (count == 0)
            break;
        if (static_cast<int64_t>(bytes->size()) + count > maxSize)
            return fail(kErrTooLarge, {});
        bytes->append(block.data(), static_cast<size_t>(count));
    }
    if (!file.Close())
        return fail(file.GetError(), file.GetErrorText());
    return true;
}
