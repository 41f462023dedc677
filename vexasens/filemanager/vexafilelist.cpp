#include "vexafilelist.h"

#include "paths.h"
#include "remotename.h"
#include "sensorobject.h"
#include "stdiofile.h"
#include "text.h"
#include "winsockerror.h"

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <vector>

#include <sys/stat.h>
#include <utime.h>

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

// Drops trailing separators, keeping a lone root.
std::wstring WithoutTrailingSeparator(std::wstring folder) {
    while (folder.size() > 1 && (folder.back() == L'/' || folder.back() == kNativeSeparator))
        folder.pop_back();
    return folder;
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
    m_folder = WithoutTrailingSeparator(folder);
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
    const std::string target = NativePath(finalName);
    if (!source.IsRemote()) {
        struct stat info {};
        if (::stat(NativePath(source.FullName(entry)).c_str(), &info) != 0)
            return;
        utimbuf times{info.st_atime, info.st_mtime};
        ::utime(target.c_str(), &times);
        return;
    }
    // An instrument file has no local stat: its listed times stand in.
    if (entry.times[2] == 0)
        return;
    const int64_t access = entry.times[1] != 0 ? entry.times[1] : entry.times[2];
    utimbuf times{time_t(access / 1000000), time_t(entry.times[2] / 1000000)};
    ::utime(target.c_str(), &times);
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
    const std::wstring finalName = FullName(name);
    const std::wstring temporaryName = FullName(kTemporaryPrefix + name);

    StdioFile in;
    if (!in.Open(sourceName, L"rb")) {
        SetError(in.GetError(), in.GetErrorText());
        return false;
    }
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

    // A link failure stays in the sensor rather than the file: the side's link error then says why.
    auto sideError = [](StdioFile& file, const CVexaFileList& side) {
        if (file.GetError() != 0)
            return file.GetError();
        if (side.IsRemote() && side.Sensor() && side.Sensor()->GetLastLinkError() != 0)
            return side.Sensor()->GetLastLinkError();
        return int(kErrBadFile);
    };
    // Drops the unfinished temporary file: the final name is never touched on the way out.
    auto abandon = [&](int error, const std::wstring& text) {
        out.Close();
        in.Close();
        FileInfo::Delete(temporaryName);
        SetError(error, text);
        return false;
    };
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
            return abandon(sideError(in, source), in.GetErrorText());
        if (got == 0)
            break;
        if (bounded && copied + got > limit)
            return abandon(EFBIG, L"the source sent more than the " + std::to_wstring(limit) +
                                      L" bytes it announced");
        if (out.Write(block.data(), got) != got)
            return abandon(sideError(out, *this), out.GetErrorText());
        copied += got;
        if (progress) {
            progress->AddBytes(got);
            if (progress->IsCancelled())
                return abandon(ECANCELED, L"cancelled");
        }
    }
    // A remote source that ended early is no copy: a link that dropped (an instrument file whose request
    // never left reads as empty) or fewer bytes than the instrument announced at the open must not
    // replace the old file. Lengths are 32-bit on the wire, so only the low part is compared.
    const bool linkLost = transport == L"link" && source.Sensor() && !source.Sensor()->IsLinkOpen();
    if (linkLost || (announced >= 0 && uint32_t(copied) != uint32_t(announced))) {
        const int error = linkLost ? sideError(in, source) : int(EIO);
        return abandon(error, linkLost ? std::wstring() : L"the source ended before its announced length");
    }
    if (!out.Close())
        return abandon(sideError(out, *this), out.GetErrorText());
    in.Close();

    // The old file goes only now that the new one is complete.
    const bool replaced = FileInfo::Delete(finalName);
    if (!FileInfo::Rename(temporaryName, finalName)) {
        const int error = FileInfo::LastError();
        std::wstring text = FileInfo::LastErrorText();
        if (replaced) {
            // The old file is gone: the temporary file is now the only copy, so it stays.
            text += (text.empty() ? L"" : L"; ") + std::wstring(L"the new file was kept as ") + temporaryName;
        } else {
            FileInfo::Delete(temporaryName);
        }
        SetError(error, text);
        return false;
    }
    if (!IsRemote())
        CopyTimes(entry, source, finalName);
    return true;
}
