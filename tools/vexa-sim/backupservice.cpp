// SPDX-License-Identifier: Apache-2.0
#include "backupservice.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <sys/stat.h>

#include "faultplan.h"
#include "instrumentstate.h"
#include "pathconfinement.h"
#include "tgzwriter.h"
#include "wireconstants.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kAborted = "aborted";
constexpr const char* kTemporaryPrefix = ".vexa-sim-backup.";

// "@HOST:/Data/a" and "\Data\a" name the same instrument path as "/Data/a".
std::string InstrumentPath(std::string item) {
    if (!item.empty() && item.front() == '@') {
        const std::size_t colon = item.find(':');
        item = colon == std::string::npos ? std::string() : item.substr(colon + 1);
    }
    std::replace(item.begin(), item.end(), '\\', '/');
    return item;
}

std::time_t ModifiedTime(const fs::path& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0 ? info.st_mtime : 0;
}

} // namespace

BackupService::BackupService(const PathConfinement& paths, InstrumentState& state, const FaultPlan& faults)
    : m_paths(paths), m_state(state), m_slowMilliseconds(faults.backupSlowMilliseconds),
      m_abortNext(faults.backupAbort), m_hangNext(faults.backupHang) {}

BackupService::~BackupService() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    if (m_worker.joinable())
        m_worker.join();
}

std::string BackupService::ArchiveName() const {
    const PathConfinement::Resolved hostname = m_paths.Resolve("/hostname");
    std::ifstream file;
    if (hostname.ok())
        file.open(hostname.real);
    std::string name;
    std::getline(file, name);
    name.erase(0, name.find_first_not_of(" \t\r"));
    name.erase(name.find_last_not_of(" \t\r") + 1);
    // The name becomes a file name in /Backup: nothing that could lead elsewhere or hide it.
    if (name.empty() || name.front() == '.' || name.find_first_of("/\\") != std::string::npos)
        name = "instrument";
    return name + kArchiveSuffix;
}

std::uint32_t BackupService::Start(const std::vector<std::string>& items, std::string* problem) {
    std::vector<fs::path> sources;
    std::uint32_t status = 0;
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_running) {
        status = wire::kStatusBusy;
        *problem = "a backup is already running";
    } else if (Resolve(items, &sources, &status, problem)) {
        if (m_worker.joinable())
            m_worker.join(); // finished: it only had to say so
        const Fault fault = m_abortNext ? Fault::Abort : m_hangNext ? Fault::Hang : Fault::None;
        m_abortNext = m_hangNext = false;
        m_running = true;
        m_state.SetBackupProgress(0);
        m_worker = std::thread(&BackupService::Run, this, std::move(sources), fault);
        return 0;
    }
    // A refusal is the reply's status alone: "aborted" ends a backup that ran.
    return status;
}

bool BackupService::Resolve(const std::vector<std::string>& items, std::vector<fs::path>* sources,
                            std::uint32_t* status, std::string* problem) const {
    for (const std::string& item : items) {
        const PathConfinement::Resolved resolved = m_paths.Resolve(InstrumentPath(item));
        std::error_code error;
        if (!resolved.ok()) {
            *status = resolved.status;
            *problem = item + ": " + resolved.message;
            return false;
        }
        if (!fs::exists(fs::symlink_status(resolved.entry, error))) {
            *status = wire::kStatusNotFound;
            *problem = item + ": no such file or folder";
            return false;
        }
        if (resolved.isRoot) {
            sources->clear(); // the root is everything
            return true;
        }
        sources->push_back(resolved.entry);
    }
    return true;
}

BackupService::Entry BackupService::MakeEntry(const fs::path& source) const {
    Entry entry;
    entry.source = source;
    entry.name = source.lexically_relative(m_paths.root()).generic_string();
    std::error_code error;
    entry.folder = fs::is_directory(fs::symlink_status(source, error));
    entry.size = entry.folder ? 0 : fs::file_size(source, error);
    if (error)
        entry.size = 0;
    return entry;
}

// Folders are walked without following links: a link inside the file system could lead out of it,
// and the archive holds files and folders only.
void BackupService::AddTree(const fs::path& folder, std::vector<Entry>* entries) const {
    std::error_code error;
    std::vector<fs::path> children;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        children.push_back(it->path());
    std::sort(children.begin(), children.end());
    for (const fs::path& child : children) {
        const fs::file_status status = fs::symlink_status(child, error);
        if (child.filename().string().starts_with(kTemporaryPrefix))
            continue;
        if (fs::is_directory(status)) {
            entries->push_back(MakeEntry(child));
            AddTree(child, entries);
        } else if (fs::is_regular_file(status)) {
            entries->push_back(MakeEntry(child));
        }
    }
}

std::vector<BackupService::Entry> BackupService::Collect(const std::vector<fs::path>& sources) const {
    std::vector<Entry> entries;
    if (sources.empty()) {
        AddTree(m_paths.root(), &entries);
        const std::string backup = kBackupFolder;
        std::erase_if(entries, [&backup](const Entry& entry) {
            return entry.name == backup || entry.name.starts_with(backup + "/");
        });
        return entries;
    }
    for (const fs::path& source : sources) {
        std::error_code error;
        const fs::file_status status = fs::symlink_status(source, error);
        if (fs::is_directory(status) || fs::is_regular_file(status))
            entries.push_back(MakeEntry(source));
        if (fs::is_directory(status))
            AddTree(source, &entries);
    }
    return entries;
}

void BackupService::Run(std::vector<fs::path> sources, Fault fault) {
    if (fault == Fault::Hang) {
        while (Pause(60 * 1000)) {
        }
        return; // the service ends: a hung backup never notifies
    }
    const std::vector<Entry> entries = Collect(sources);
    const fs::path folder = m_paths.root() / kBackupFolder;
    const std::string name = ArchiveName();
    const fs::path temporary = folder / (kTemporaryPrefix + name + ".part");
    std::error_code error;
    fs::create_directories(folder, error);
    std::string problem;
    if (!error && Pack(entries, temporary, fault, &problem)) {
        fs::rename(temporary, folder / name, error);
        if (!error) {
            m_state.SetBackupProgress(100);
            Finish(std::string("/") + kBackupFolder + "/" + name);
            return;
        }
    }
    fs::remove(temporary, error);
    Finish(kAborted);
}

bool BackupService::Pack(const std::vector<Entry>& entries, const fs::path& temporary, Fault fault,
                         std::string* problem) {
    std::uintmax_t total = 0;
    for (const Entry& entry : entries)
        total += entry.size;
    std::uintmax_t packed = 0;
    // Below 100 until the archive is complete under its final name.
    auto onBlock = [&](std::size_t count) {
        packed += count;
        m_state.SetBackupProgress(
            total == 0 ? 99 : static_cast<int>(std::min<std::uintmax_t>(99, packed * 100 / total)));
        return true;
    };
    TgzWriter archive;
    if (!archive.Open(temporary)) {
        *problem = archive.problem();
        return false;
    }
    for (const Entry& entry : entries) {
        const bool added = entry.folder ? archive.AddFolder(entry.name, ModifiedTime(entry.source))
                                        : archive.AddFile(entry.name, entry.source, onBlock);
        if (!added) {
            *problem = archive.problem();
            return false;
        }
        if (fault == Fault::Abort && !entry.folder) {
            *problem = "aborted by the backup-abort fault";
            return false;
        }
        if (m_slowMilliseconds > 0 && !Pause(m_slowMilliseconds)) {
            *problem = "the instrument is shutting down";
            return false;
        }
    }
    if (fault == Fault::Abort) {
        *problem = "aborted by the backup-abort fault";
        return false;
    }
    if (!archive.Close()) {
        *problem = archive.problem();
        return false;
    }
    return true;
}

bool BackupService::Pause(unsigned milliseconds) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_wake.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return m_stopping; });
}

void BackupService::Finish(const std::string& text) {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = false;
        if (m_stopping)
            return; // shutting down: nobody is left to tell
    }
    m_state.QueueEvent(InstrumentState::kEventBackup, text);
}
