// SPDX-License-Identifier: Apache-2.0
#include "safecopy.h"

#include "winsockerror.h"

#include <cerrno>
#include <string_view>
#include <vector>

namespace {

bool Fail(int error, const std::wstring& text, int* errorOut, std::wstring* textOut) {
    if (errorOut)
        *errorOut = error;
    if (textOut)
        *textOut = text;
    return false;
}

} // namespace

int SafeCopy::ErrorOf(StdioFile& file, bool source) const {
    if (errorOf)
        return errorOf(file, source);
    return file.GetError() != 0 ? file.GetError() : int(kErrBadFile);
}

bool SafeCopy::Abandon(int error, const std::wstring& text, int* errorOut, std::wstring* textOut) {
    // The final name is never touched on the way out.
    out.Close();
    in.Close();
    placer.Delete(temporaryName);
    return Fail(error, text, errorOut, textOut);
}

bool SafeCopy::Run(int* error, std::wstring* text) {
    // A remote source announces its length (32 bits on the wire; FTP may not know it, -1). A link
    // stream that runs past it is cut off there with an error instead of filling the disk.
    const std::wstring_view transport = in.TransportName();
    const int announced = transport == L"local" ? -1 : in.GetLength();
    const bool bounded = transport == L"link" || announced >= 0;
    const int64_t limit = int64_t(uint32_t(announced));
    std::vector<char> block(kCopyBlockSize);
    int64_t copied = 0;
    for (;;) {
        const int got = in.Read(block.data(), kCopyBlockSize);
        if (got < 0)
            return Abandon(ErrorOf(in, true), in.GetErrorText(), error, text);
        if (got == 0)
            break;
        if (bounded && copied + got > limit)
            return Abandon(
                EFBIG, L"the source sent more than the " + std::to_wstring(limit) + L" bytes it announced",
                error, text);
        if (out.Write(block.data(), got) != got)
            return Abandon(ErrorOf(out, false), out.GetErrorText(), error, text);
        copied += got;
        if (progress) {
            progress->AddBytes(got);
            if (progress->IsCancelled())
                return Abandon(ECANCELED, L"cancelled", error, text);
        }
    }
    // A remote source that ended early is no copy: a link that dropped (an instrument file whose
    // request never left reads as empty) or fewer bytes than the other side announced at the open must
    // not replace the old file. Lengths are 32-bit on the wire, so only the low part is compared.
    const bool lost = sourceLost && sourceLost();
    if (lost)
        return Abandon(ErrorOf(in, true), {}, error, text);
    if (announced >= 0 && uint32_t(copied) != uint32_t(announced))
        return Abandon(EIO, L"the source ended before its announced length", error, text);
    // Over FTP only the server's confirmation of the whole file counts: Close says whether it came.
    if (!out.Close())
        return Abandon(ErrorOf(out, false), out.GetErrorText(), error, text);
    in.Close();

    const bool replaced = placer.Delete(finalName);
    if (placer.Rename(temporaryName, finalName))
        return true;
    const int renameError = placer.LastError();
    std::wstring renameText = placer.LastErrorText();
    if (replaced) {
        // The old file is gone: the temporary file is now the only copy, so it stays.
        renameText +=
            (renameText.empty() ? L"" : L"; ") + std::wstring(L"the new file was kept as ") + temporaryName;
    } else {
        placer.Delete(temporaryName);
    }
    return Fail(renameError, renameText, error, text);
}
