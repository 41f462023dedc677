// SPDX-License-Identifier: Apache-2.0
#include "fileinfo.h"

#include "remotename.h"
#include "winsockerror.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <shared_mutex>

namespace {

// Factories are asked under the shared lock; registering and unregistering take it exclusively.
std::shared_mutex& FactoriesMutex() {
    static std::shared_mutex mutex;
    return mutex;
}

std::vector<FileInfoImplFactory*>& Factories() {
    static std::vector<FileInfoImplFactory*> factories;
    return factories;
}

thread_local int t_lastError = 0;
thread_local std::wstring t_lastErrorText;

// "@HOST:", "@HOST" or "HOST" -> "HOST".
std::wstring BareHost(const std::wstring& host) {
    std::wstring bare = host;
    if (!bare.empty() && bare.front() == L'@')
        bare.erase(0, 1);
    const size_t colon = bare.find(L':');
    if (colon != std::wstring::npos)
        bare.resize(colon);
    return bare;
}

// The back end for a host: the workstation's for an empty host, else the first factory's that serves it.
std::unique_ptr<FileInfoImpl> ImplFor(const std::wstring& host) {
    if (host.empty())
        return std::unique_ptr<FileInfoImpl>(CreateLocalFileInfoImpl());
    std::shared_lock lock(FactoriesMutex());
    for (FileInfoImplFactory* factory : Factories()) {
        if (FileInfoImpl* impl = factory->Create(host))
            return std::unique_ptr<FileInfoImpl>(impl);
    }
    return nullptr;
}

// The host of a path: that of a remote name, empty for a workstation path.
std::wstring HostOf(const std::wstring& path) {
    std::wstring host;
    if (!SplitRemoteName(path, &host, nullptr))
        return {};
    return host;
}

// Runs one operation on the back end for `host` and keeps the outcome as the thread's last error.
template <typename Operation> bool Run(const std::wstring& host, Operation operation) {
    std::unique_ptr<FileInfoImpl> impl = ImplFor(host);
    if (!impl) {
        FileInfo::SetLastError(kWsaNotConn);
        return false;
    }
    if (operation(*impl)) {
        FileInfo::SetLastError(0);
        return true;
    }
    int error = impl->GetError();
    std::wstring text = impl->GetErrorText();
    if (error == 0 && impl->LastReplyStatus() != 0) {
        error = int(impl->LastReplyStatus());
        text = impl->LastReplyText();
    }
    // A failure without a reason still must not read as success.
    FileInfo::SetLastError(error != 0 ? error : kErrInvalid, text);
    return false;
}

bool IsRemote(const std::wstring& path) {
    return IsRemoteFilename(path);
}

} // namespace

FileInfoImpl::~FileInfoImpl() = default;

bool FileInfoImpl::RunCommand(const std::wstring&, std::wstring& output, int64_t) {
    output.clear();
    return false;
}

FileInfoImplFactory::FileInfoImplFactory() {
    std::unique_lock lock(FactoriesMutex());
    Factories().push_back(this);
}

FileInfoImplFactory::~FileInfoImplFactory() {
    std::unique_lock lock(FactoriesMutex());
    std::erase(Factories(), this);
}

int FileInfo::LastError() {
    return t_lastError;
}

std::wstring FileInfo::LastErrorText() {
    return t_lastErrorText;
}

void FileInfo::SetLastError(int error, const std::wstring& text) {
    t_lastError = error;
    t_lastErrorText = text;
}

bool FileInfo::ReadSensorDir(const std::wstring& host, const std::wstring& folder,
                             std::vector<FileInfo>& entries, const std::wstring& pattern, uint32_t flags) {
    entries.clear();
    const std::wstring target = host.empty() ? HostOf(folder) : BareHost(host);
    return Run(target,
               [&](FileInfoImpl& impl) { return impl.ReadSensorDir(folder, entries, pattern, flags); });
}

bool FileInfo::MkDir(const std::wstring& path) {
    return Run(HostOf(path), [&](FileInfoImpl& impl) { return impl.MkDir(path); });
}

bool FileInfo::Rename(const std::wstring& oldPath, const std::wstring& newPath) {
    // Both names must be on the same side: a rename never moves a file between machines.
    if (IsRemote(oldPath) != IsRemote(newPath) || (IsRemote(newPath) && HostOf(oldPath) != HostOf(newPath))) {
        SetLastError(kErrInvalid);
        return false;
    }
    return Run(HostOf(oldPath), [&](FileInfoImpl& impl) { return impl.Rename(oldPath, newPath); });
}

bool FileInfo::RmDir(const std::wstring& path, bool recursive) {
    return Run(HostOf(path), [&](FileInfoImpl& impl) { return impl.RmDir(path, recursive); });
}

bool FileInfo::Delete(const std::wstring& path) {
    return Run(HostOf(path), [&](FileInfoImpl& impl) { return impl.Delete(path); });
}

bool FileInfo::RunCommand(const std::wstring& host, const std::wstring& command, std::wstring& output,
                          int64_t timeoutUs) {
    output.clear();
    const std::wstring target = BareHost(host);
    if (target.empty()) {
        SetLastError(kErrInvalid); // commands run on an instrument only
        return false;
    }
    return Run(target, [&](FileInfoImpl& impl) { return impl.RunCommand(command, output, timeoutUs); });
}

bool FileInfo::GetFileInfo(const std::wstring& path, FileInfo* entry, void* preview, int* previewSize) {
    return Run(HostOf(path),
               [&](FileInfoImpl& impl) { return impl.GetFileInfo(path, entry, preview, previewSize); });
}

int CompareModified(const FileInfo& first, const FileInfo& second) {
    const int64_t a = first.GetTime() / 1000000;
    const int64_t b = second.GetTime() / 1000000;
    if (first.GetTime() == 0 || second.GetTime() == 0 || a == b)
        return 0;
    return a > b ? -1 : 1;
}
