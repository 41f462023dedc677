// SPDX-License-Identifier: Apache-2.0
#include "vexafilelist.h"

#include "fileinfoputinplace.h"
#include "ftpputinplace.h"
#include "paths.h"
#include "remotename.h"
#include "safecopy.h"
#include "sensorobject.h"
#include "stdiofile.h"
#include "text.h"
#include "winsockerror.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <vector>

namespace {

std::mutex g_busyMutex;
FileListBusyHook g_busyHook;

// Announces a listing to the user interface for as long as it runs.
class BusyScope {
public:
    BusyScope() : m_hook(CurrentHook()) {
        if (m_hook)
            m_hook(true);
    }
    ~BusyScope() {
        if (m_hook)
            m_hook(false);
    }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    static FileListBusyHook CurrentHook() {
        std::lock_guard lock(g_busyMutex);
        return g_busyHook;
    }
    FileListBusyHook m_hook;
};

// A link failure stays in the sensor rather than the file: the side's link error then says why.
int SideError(StdioFile& file, const CVexaFileList& side) {
    if (file.GetError() != 0)
        return file.GetError();
    if (side.IsRemote() && side.Sensor() && side.Sensor()->GetLastLinkError() != 0)
        return side.Sensor()->GetLastLinkError();
    return int(kErrBadFile);
}

} // namespace

void SetFileListBusyHook(FileListBusyHook hook) {
    std::lock_guard lock(g_busyMutex);
    g_busyHook = std::move(hook);
}

bool IsFolderEntry(const FileInfo& entry) {
    return entry.size < 0 || entry.IsFolder();
}

CVexaFileList::CVexaFileList(ISensorObject* sensor, const std::wstring& startPath)
    : CVexaFileList(sensor, startPath, true) {}

CVexaFileList::CVexaFileList(ISensorObject* sensor, const std::wstring& startPath, bool readNow)
    : m_sensor(sensor) {
    if (SetPath(startPath) && readNow)
        ReadIfReachable();
}

CVexaFileList::~CVexaFileList() = default;

std::wstring CVexaFileList::FolderArgument(const std::wstring& host, const std::wstring& folder) {
    if (!host.empty())
        return MakeFilename(folder.empty() ? std::wstring(L"/") : folder, L"", host);
    if (!folder.empty() && folder.back() != L'/' && folder.back() != kNativeSeparator)
        return folder + kNativeSeparator;
    return folder;
}

bool CVexaFileList::SetPath(const std::wstring& path) {
    std::wstring folder, file, host;
    const bool remote = ParseFilename(path, &folder, &file, &host);
    if (remote ? host.empty() || folder.empty() : folder.empty())
        return false;
    m_host = remote ? host : std::wstring();
    m_folder = WithoutTrailingSlash(folder);
    return true;
}

bool CVexaFileList::ReadIfReachable() {
    // An instrument folder is listed only while its sensor is on line.
    if (IsRemote() && m_sensor && !m_sensor->IsOnline(true)) {
        m_entries.clear();
        SetError(kWsaNotConn);
        return false;
    }
    return Refresh();
}

bool CVexaFileList::ReadFolder(const std::wstring& path) {
    if (!SetPath(path)) {
        m_entries.clear();
        SetError(kErrInvalid);
        return false;
    }
    return ReadIfReachable();
}

bool CVexaFileList::Refresh() {
    m_entries.clear();
    SetError(0);
    if (!m_valid)
        return false;
    BusyScope busy;
    if (!FileInfo::ReadSensorDir(m_host, m_folder, m_entries, L"", m_showHidden ? 1u : 0u)) {
        m_entries.clear();
        TakeFileInfoError();
        return false;
    }
    // A listing that the link cut short reads as complete to the back end: the link says otherwise,
    // and a part of a folder must not pass for all of it (a copy of the tree would look complete).
    if (IsRemote() && m_sensor && !m_sensor->IsLinkOpen()) {
        m_entries.clear();
        const int error = m_sensor->GetLastLinkError();
        SetError(error ? error : int(kWsaNotConn), L"the listing was cut short");
        return false;
    }
    Sort();
    return true;
}

bool CVexaFileList::ComesBefore(const FileInfo& a, const FileInfo& b, int column, bool descending) {
    if (a.name == b.name)
        return false;
    if (a.name == L"..")
        return true;
    if (b.name == L"..")
        return false;
    if ((a.size < 0) != (b.size < 0))
        return a.size < 0;
    if (a.IsFolder() != b.IsFolder())
        return a.IsFolder();
    // Only the key follows the order: ".." and the grouping stay on top when descending.
    const FileInfo& x = descending ? b : a;
    const FileInfo& y = descending ? a : b;
    switch (column) {
    case kSortSize:
        return x.size < y.size;
    case kSortTime:
        return x.GetTime() < y.GetTime();
    default:
        return CompareNoCase(x.name, y.name) < 0;
    }
}

void CVexaFileList::Sort() {
    // A merge sort stays within bounds even for listings with duplicate names, for which the order
    // above is not strictly weak.
    std::stable_sort(m_entries.begin(), m_entries.end(), [this](const FileInfo& a, const FileInfo& b) {
        return ComesBefore(a, b, m_sortColumn, m_descending);
    });
}

const FileInfo* CVexaFileList::Entry(int index) const {
    if (index < 0 || index >= Count())
        return nullptr;
    return &m_entries[size_t(index)];
}

const FileInfo* CVexaFileList::Find(const std::wstring& name) const {
    for (const FileInfo& entry : m_entries)
        if (entry.name == name)
            return &entry;
    return nullptr;
}

std::wstring CVexaFileList::FullName(const std::wstring& name) const {
    if (IsRemote())
        return MakeFilename(m_folder, name, m_host);
    return JoinPath(m_folder, name, L'/');
}

std::wstring CVexaFileList::FolderName() const {
    return MakeFilename(L"", m_folder, m_host);
}

void CVexaFileList::SetError(int error, const std::wstring& text) {
    m_lastError = error;
    m_lastErrorText = text;
}

void CVexaFileList::TakeFileInfoError() {
    SetError(FileInfo::LastError(), FileInfo::LastErrorText());
}

bool CVexaFileList::MakeFolder(const std::wstring& name) {
    SetError(0);
    if (FileInfo::MkDir(FullName(name)))
        return true;
    TakeFileInfoError();
    return false;
}

bool CVexaFileList::Rename(const std::wstring& oldName, const std::wstring& newName) {
    SetError(0);
    if (FileInfo::Rename(FullName(oldName), FullName(newName)))
        return true;
    TakeFileInfoError();
    return false;
}

bool CVexaFileList::RemoveFolder(const std::wstring& name, bool recursive) {
    SetError(0);
    if (FileInfo::RmDir(FullName(name), recursive))
        return true;
    TakeFileInfoError();
    return false;
}

bool CVexaFileList::DeleteFile(const std::wstring& name) {
    SetError(0);
    if (FileInfo::Delete(FullName(name)))
        return true;
    TakeFileInfoError();
    return false;
}

void CVexaFileList::CopyTimes(const FileInfo& entry, const CVexaFileList& source,
                              const std::wstring& finalName) {
    // The modification time, through wide paths so a name beyond ASCII is found on Windows too.
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path target = ToFsPath(finalName);
    if (!source.IsRemote()) {
        const fs::file_time_type modified = fs::last_write_time(ToFsPath(source.FullName(entry)), error);
        if (!error)
            fs::last_write_time(target, modified, error);
        return;
    }
    // An instrument file has no local time stamp: its listed one (microseconds) stands in.
    if (entry.times[2] == 0)
        return;
    const std::chrono::sys_time<std::chrono::microseconds> modified{
        std::chrono::microseconds(entry.times[2])};
    fs::last_write_time(target, std::chrono::file_clock::from_sys(modified), error);
}

bool CVexaFileList::CopyIn(const FileInfo& entry, const CVexaFileList& source, ICopyProgress* progress,
                           const std::wstring& destinationName) {
    SetError(0);
    m_lastTransport.clear();
    const std::wstring name = destinationName.empty() ? entry.name : destinationName;
    if (entry.name.empty() || name.empty() || !m_valid || !source.m_valid) {
        SetError(kErrInvalid);
        return false;
    }
    // The names join onto folders: one that is a path could reach outside them.
    if (!IsPlainEntryName(entry.name) || !IsPlainEntryName(name)) {
        SetError(kErrInvalid, L"not a plain file name");
        return false;
    }
    if (IsFolderEntry(entry))
        return MakeFolder(name); // the contents are the copy job's business

    const std::wstring sourceName = source.FullName(entry);
    StdioFile in;
    if (!in.Open(sourceName, L"rb")) {
        SetError(in.GetError(), in.GetErrorText());
        return false;
    }
    const std::wstring temporaryName = FullName(kCopyTemporaryPrefix + name);
    StdioFile out;
    if (!out.Open(temporaryName, L"wb")) {
        SetError(out.GetError(), out.GetErrorText());
        return false;
    }
    m_lastTransport = IsRemote() ? out.TransportName() : in.TransportName();
    if (progress) {
        progress->SetCurrentFile(sourceName);
        progress->SetFileSize(entry.size);
    }
    // A file that went over FTP is put in place over FTP: the link may be what is missing.
    FtpPutInPlace overFtp;
    FileInfoPutInPlace throughFileInfo;
    IPutInPlace& placer =
        IsRemote() && m_lastTransport == L"FTP" ? static_cast<IPutInPlace&>(overFtp) : throughFileInfo;
    SafeCopy copy{.in = in,
                  .out = out,
                  .temporaryName = temporaryName,
                  .finalName = FullName(name),
                  .placer = placer,
                  .progress = progress,
                  .errorOf = [&](StdioFile& file,
                                 bool fromSource) { return SideError(file, fromSource ? source : *this); },
                  .sourceLost =
                      [&] {
                          return std::wstring_view(in.TransportName()) == L"link" && source.Sensor() &&
                                 !source.Sensor()->IsLinkOpen();
                      }};
    int error = 0;
    std::wstring text;
    if (!copy.Run(&error, &text)) {
        SetError(error, text);
        return false;
    }
    if (!IsRemote())
        CopyTimes(entry, source, copy.finalName);
    return true;
}
