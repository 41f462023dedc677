// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's backup: packs instrument paths into /Backup/<hostname>_backup.tgz on a thread of
// its own, so file transfers and status keep being served meanwhile. The archive is written under a
// hidden temporary name and renamed when complete; `backupProgress` in the status rises by bytes
// packed, and the outcome is queued as event 1048881 with the archive's instrument path, or
// "aborted". One backup runs at a time.
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class FaultPlan;
class InstrumentState;
class PathConfinement;

class BackupService {
public:
    static constexpr const char* kBackupFolder = "Backup";
    static constexpr const char* kArchiveSuffix = "_backup.tgz";

    BackupService(const PathConfinement& paths, InstrumentState& state, const FaultPlan& faults);
    // Ends a running (or hanging) backup without notifying, and waits for its thread.
    ~BackupService();
    BackupService(const BackupService&) = delete;
    BackupService& operator=(const BackupService&) = delete;

    // Starts packing `items` (instrument paths, optionally "@HOST:"-prefixed; none packs everything
    // but /Backup). Returns 0 once the packing runs; otherwise a refusal status with the reason in
    // *problem, and no event is queued. Called from any connection's thread.
    std::uint32_t Start(const std::vector<std::string>& items, std::string* problem);

    // The archive's name for the instrument's hostname (the root's "hostname" file).
    std::string ArchiveName() const;

private:
    struct Entry {
        std::string name; // path inside the archive
        std::filesystem::path source;
        bool folder = false;
        std::uintmax_t size = 0;
    };
    enum class Fault { None, Abort, Hang };

    bool Resolve(const std::vector<std::string>& items, std::vector<std::filesystem::path>* sources,
                 std::uint32_t* status, std::string* problem) const;
    std::vector<Entry> Collect(const std::vector<std::filesystem::path>& sources) const;
    void AddTree(const std::filesystem::path& folder, std::vector<Entry>* entries) const;
    Entry MakeEntry(const std::filesystem::path& source) const;
    void Run(std::vector<std::filesystem::path> sources, Fault fault);
    bool Pack(const std::vector<Entry>& entries, const std::filesystem::path& temporary, Fault fault,
              std::string* problem);
    // Sleeps, or waits for the service to end; false when it is ending.
    bool Pause(unsigned milliseconds);
    void Finish(const std::string& text);

    const PathConfinement& m_paths;
    InstrumentState& m_state;
    unsigned m_slowMilliseconds = 0;
    std::mutex m_mutex; // guards everything below
    std::condition_variable m_wake;
    bool m_running = false;
    bool m_stopping = false;
    bool m_abortNext = false;
    bool m_hangNext = false;
    std::thread m_worker;
};
