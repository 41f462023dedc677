#pragma once
// What the file commands of `vexa` share: remote operands, the instrument session with its exit codes,
// the progress bar, the overwrite question, and copying one file either way through the folder list.
#include "cli.h"
#include "copyjob.h"
#include "copyprogress.h"
#include "fileinfo.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

class CVexaFileList;
class VXSFileInfoImpl;

// A file operand: "@HOST:/PATH" on an instrument, anything else on this computer.
struct FileOperand {
    std::string text;  // as typed, for messages
    std::wstring host; // empty: local
    std::wstring path; // instrument path or local path
    bool IsRemote() const { return !host.empty(); }
    // "@HOST:PATH" or the local path.
    std::wstring Name() const;
};

// One entry as `--json` prints it: name, size, folder flag, attributes and the three times (microseconds
// since 1970 UTC), exactly as the back end returned them.
nlohmann::ordered_json EntryJson(const FileInfo& entry);
// "YYYY-MM-DD HH:MM" in local time.
std::string EntryTimeText(int64_t microseconds);

// The instrument sessions of one command, one per host; the link is tried once per host.
class HostSessions {
public:
    // The sensor for `host` with its link open, or null (`error` then says why the link did not open).
    VEXASensorObject* Linked(const std::wstring& host, int* error);

private:
    struct Entry {
        std::unique_ptr<CliSession> session;
        bool linked = false;
        int error = 0;
    };
    std::map<std::wstring, Entry> m_sessions;
};

// Parses an operand; false (with a usage message printed) for "@" names without a valid host or path.
bool ParseFileOperand(const CliContext& ctx, const std::string& text, FileOperand* out);

// Prints "vexa: <what>: <number> (<meaning>): <instrument message>" for a failed file operation.
void PrintFileError(const CliContext& ctx, const std::string& what, int error, const std::wstring& text);

// The same for a failed operation of the link's folder back end: its error, or the instrument's status
// and message when it refused. Returns the exit code to use.
int PrintFolderError(const CliContext& ctx, const std::string& what, const VXSFileInfoImpl& impl);

// Whether an error number means the instrument was not reached at all (link or FTP connection).
bool IsUnreachableError(int error);

// The exit code for a failed file operation with this error.
int ExitCodeFor(int error);

// Connects to an instrument for a command that needs its link; on failure prints why and returns the
// exit code to use (3, or 2 for an address that cannot be one). Returns 0 when connected.
int ConnectForLink(const CliContext& ctx, CliSession& session, const FileOperand& operand);

// SIGINT turns into a cancel of the running transfer for as long as the guard lives.
class InterruptGuard {
public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    static bool Interrupted();
};

// The progress of a transfer on stderr: a bar with bytes, speed and time left, drawn only when stderr
// is a terminal and the run is not quiet. Cancelled by Ctrl+C (see InterruptGuard). Thread-safe.
class TerminalProgress : public ICopyProgress {
public:
    explicit TerminalProgress(const CliContext& ctx);
    ~TerminalProgress() override;

    void SetCurrentFile(const std::wstring& name) override;
    void SetFileSize(int64_t bytes) override;
    void AddBytes(int64_t bytes) override;
    bool IsCancelled() const override;
    void SetDone() override;
    void SetTotal(int64_t bytes, int files) override;

    int64_t BytesMoved() const { return m_total.load(); }

private:
    void Draw(bool final);

    bool m_enabled;
    mutable std::mutex m_mutex;
    std::wstring m_file;
    int64_t m_fileSize = -1;
    int64_t m_fileBytes = 0;
    int64_t m_jobBytes = -1;
    int m_jobFiles = 0;
    int m_filesStarted = 0;
    std::atomic<int64_t> m_total{0};
    uint32_t m_start;
    uint32_t m_lastDraw = 0;
    bool m_drawn = false;
};

// How existing destination files are treated: asked on a terminal, else decided by --overwrite.
class OverwritePolicy {
public:
    // `option` is the --overwrite value ("", "yes" or "no").
    OverwritePolicy(const CliContext& ctx, const std::string& option);
    // The answer for one existing file; kCancel when no terminal can ask and no --overwrite was given
    // (a message says so).
    OverwriteAnswer Ask(const std::wstring& name, const std::wstring& target);
    OverwriteQuestion AsQuestion();
    bool Refused() const { return m_refused; }

private:
    const CliContext& m_ctx;
    std::optional<OverwriteAnswer> m_fixed;
    bool m_terminal;
    bool m_refused = false;
};

// The outcome of copying one file.
struct CopyOutcome {
    int exitCode = kExitOk;
    bool skipped = false;
};

// Copies one file between any two operands (at least one usually remote), through the folder list's
// temporary name, so the final name only ever holds a complete file. When the link does not reach an
// instrument that must receive the file, the file goes over FTP to the temporary name and is renamed
// there. `destination` may name an existing folder.
CopyOutcome CopyOneFile(const CliContext& ctx, const FileOperand& source, const FileOperand& destination,
                        OverwritePolicy& overwrite, const std::string& verb);
