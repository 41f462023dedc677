// SPDX-License-Identifier: Apache-2.0
#include "remotename.h"

#include "paths.h"
#include "registry.h"

bool IsRemoteFilename(const std::wstring& name) {
    return !name.empty() && name[0] == L'@';
}

bool SplitRemoteName(const std::wstring& name, std::wstring* host, std::wstring* path) {
    if (!IsRemoteFilename(name))
        return false;
    const size_t colon = name.find(L':');
    if (colon == std::wstring::npos)
        return false;
    if (host)
        *host = name.substr(1, colon - 1);
    if (path)
        *path = name.substr(colon + 1);
    return true;
}

namespace {

// Splits a path at its last separator; the root keeps its separator as the folder ("/x" -> "/", "x").
void SplitPath(const std::wstring& path, bool remote, std::wstring* folder, std::wstring* file) {
    size_t last = path.rfind(L'/');
    if (!remote && kNativeSeparator != L'/') {
        const size_t native = path.rfind(kNativeSeparator);
        if (native != std::wstring::npos && (last == std::wstring::npos || native > last))
            last = native;
    }
    if (last == std::wstring::npos) {
        if (folder)
            folder->clear();
        if (file)
            *file = path;
        return;
    }
    if (folder)
        *folder = last == 0 ? path.substr(0, 1) : path.substr(0, last);
    if (file)
        *file = path.substr(last + 1);
}

} // namespace

bool ParseFilename(const std::wstring& name, std::wstring* folder, std::wstring* file, std::wstring* host) {
    std::wstring remoteHost, path;
    if (SplitRemoteName(name, &remoteHost, &path)) {
        SplitPath(path, true, folder, file);
        if (host)
            *host = remoteHost;
        return true;
    }
    SplitPath(name, false, folder, file);
    if (host)
        host->clear();
    return false;
}

std::wstring LastPathPart(const std::wstring& name) {
    std::wstring file;
    ParseFilename(name, nullptr, &file, nullptr);
    return file;
}

std::wstring FolderOfPath(const std::wstring& name) {
    std::wstring folder;
    ParseFilename(name, &folder, nullptr, nullptr);
    return folder;
}

std::wstring WithoutTrailingSlash(std::wstring path) {
    while (path.size() > 1 && (path.back() == L'/' || path.back() == kNativeSeparator))
        path.pop_back();
    return path;
}

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name, wchar_t separator) {
    if (folder.empty())
        return name;
    if (name.empty())
        return folder;
    const bool folderEnds = folder.back() == separator;
    const bool nameStarts = name.front() == separator;
    if (folderEnds && nameStarts)
        return folder + name.substr(1);
    if (folderEnds || nameStarts)
        return folder + name;
    return folder + separator + name;
}

bool IsPlainEntryName(const std::wstring& name) {
    if (name.empty() || name == L"." || name == L"..")
        return false;
    return name.find_first_of(std::wstring_view(L"/\\\0", 3)) == std::wstring::npos;
}

std::wstring MakeFilename(const std::wstring& folder, const std::wstring& file, const std::wstring& host) {
    std::wstring path;
    if (file.empty() && !folder.empty() && folder.back() != L'/')
        path = folder + L'/'; // a folder name: keeps "@h:/Data/" apart from the file "@h:/Data"
    else
        path = JoinPath(folder, file, L'/');
    if (host.empty())
        return path;
    return L"@" + host + L":" + path;
}

std::wstring get_actual_host(const std::wstring& host) {
    if (host.empty())
        return host;
    const std::wstring mapped = CPXRegistry::Instance().GetString(L"FTP/HostMap", host, L"");
    return mapped.empty() ? host : mapped;
}
