// SPDX-License-Identifier: Apache-2.0
#include "methodoffile.h"

#include "paths.h"
#include "remotename.h"
#include "vexafileref.h"

namespace {

std::wstring LastPart(const std::wstring& path) {
    const size_t slash = path.find_last_of(L"/\\");
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

std::wstring LocalMethodFor(const std::wstring& file, const std::wstring& named) {
    if (!IsRemoteFilename(named) && PathAccessible(named, 0) && !IsDirectory(named))
        return named;
    std::wstring folder;
    ParseFilename(file, &folder, nullptr, nullptr);
    std::wstring parent;
    ParseFilename(folder, &parent, nullptr, nullptr);
    const std::wstring name = LastPart(named);
    for (const std::wstring& candidate :
         {JoinPath(JoinPath(parent, L"Method", kNativeSeparator), name, kNativeSeparator),
          JoinPath(folder, name, kNativeSeparator)}) {
        if (PathAccessible(candidate, 0))
            return candidate;
    }
    return named;
}

} // namespace

bool FindMethodOfFile(const std::wstring& file, std::wstring* method, std::wstring* reason) {
    VexaFileRef ref;
    if (!ref.Open(file)) {
        *reason = ref.GetLastErrorText();
        return false;
    }
    const std::wstring named = ref.GetParameter(VexaFileRef::kSensorParameter);
    if (named.empty()) {
        *reason = L"The file does not name the method it was made with.";
        return false;
    }
    std::wstring host, path;
    if (SplitRemoteName(file, &host, &path) && !IsRemoteFilename(named)) {
        *method = MakeFilename(L"", named, host);
        return true;
    }
    *method = LocalMethodFor(file, named);
    return true;
}
