// SPDX-License-Identifier: Apache-2.0
#pragma once
// Copying one file so that its final name only ever holds a complete file: the data goes to a
// temporary name, and the old file of the final name goes only once the new one is complete. What
// "put in place" means is the receiving side's business (IPutInPlace).
#include "copyprogress.h"
#include "putinplace.h"
#include "stdiofile.h"

#include <cstdint>
#include <functional>
#include <string>

// Prefixed to a file's name while a copy writes it; renamed to the final name once complete.
inline constexpr const wchar_t* kCopyTemporaryPrefix = L"___temp@@";
// The block a copy reads and writes at a time; progress is reported per block.
inline constexpr int kCopyBlockSize = 16384;

struct SafeCopy {
    StdioFile& in;  // open for reading
    StdioFile& out; // open for writing, on temporaryName
    std::wstring temporaryName;
    std::wstring finalName;
    IPutInPlace& placer;
    // May be null; a cancel it reports ends the copy with ECANCELED.
    ICopyProgress* progress = nullptr;
    // The number for a failed read (source true) or write: by default the file's own error, else
    // kErrBadFile. A caller whose link keeps its errors elsewhere says so here.
    std::function<int(StdioFile& file, bool source)> errorOf;
    // Whether the source's connection dropped while it was read, so that its end is no real end.
    std::function<bool()> sourceLost;

    // Copies block by block, closes both files and puts the file in place. On failure the temporary
    // file is removed, unless the old file is already gone: then it is the only copy and stays (the
    // message says where). False with *error and *text (either may be null).
    bool Run(int* error, std::wstring* text);

private:
    bool Abandon(int error, const std::wstring& text, int* errorOut, std::wstring* textOut);
    int ErrorOf(StdioFile& file, bool source) const;
};
