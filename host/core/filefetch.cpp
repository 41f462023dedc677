#include "filefetch.h"

#include "fileinfoputinplace.h"
#include "paths.h"
#include "safecopy.h"
#include "stdiofile.h"

bool FetchFile(const std::wstring& source, const std::wstring& destination, ICopyProgress* progress,
               int* error, std::wstring* text) {
    const auto fail = [&](StdioFile& file) {
        if (error)
            *error = file.GetError();
        if (text)
            *text = file.GetErrorText();
        return false;
    };
    const std::wstring::size_type slash = destination.find_last_of(L"/\\");
    const std::wstring folder =
        slash == std::wstring::npos ? std::wstring() : destination.substr(0, slash + 1);
    const std::wstring name = destination.substr(folder.size());
    if (!folder.empty() && !IsDirectory(folder))
        FullDirCreate(folder);

    StdioFile in;
    if (!in.Open(source, L"rb"))
        return fail(in);
    const std::wstring temporaryName = folder + kCopyTemporaryPrefix + name;
    StdioFile out;
    if (!out.Open(temporaryName, L"wb"))
        return fail(out);
    if (progress) {
        progress->SetCurrentFile(source);
        progress->SetFileSize(in.GetLength());
    }
    FileInfoPutInPlace placer;
    SafeCopy copy{.in = in,
                  .out = out,
                  .temporaryName = temporaryName,
                  .finalName = destination,
                  .placer = placer,
                  .progress = progress,
                  .errorOf = {},
                  .sourceLost = {}};
    return copy.Run(error, text);
}
