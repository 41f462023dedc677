#include "cmd_filesupport.h"

#include "ftperror.h"
#include "ftpputinplace.h"
#include "paths.h"
#include "pumpwait.h"
#include "remotename.h"
#include "safecopy.h"
#include "sensoraddress.h"
#include "stdiofile.h"
#include "systemaccess.h"
#include "text.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"
#include "vxsfileinfoimpl.h"
#include "winsockerror.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <map>
#include <vector>

#include <curl/curl.h>
#include <unistd.h>

namespace {

std::atomic<bool> g_interrupted{false};
std::atomic<int> g_guards{0};
void (*g_previousHandler)(int) = SIG_DFL;

extern "C" void OnTransferInterrupt(int) {
    g_interrupted = true;
}

bool IsTerminal(int fd) {
    return isatty(fd) != 0;
}

std::string HumanBytes(double bytes) {
    const char* units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    int unit = 0;
    while (bytes >= 1024 && unit < 4) {
        bytes /= 1024;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, units[unit]);
    return text;
}

std::string Clock(double seconds) {
    if (seconds < 0 || seconds > 359999)
        return "--:--";
    const long s = long(seconds + 0.5);
    char text[32];
    if (s >= 3600)
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", s / 3600, s / 60 % 60, s % 60);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld", s / 60, s % 60);
    return text;
}

// Copies a local file to an instrument over FTP: the temporary name first, then a rename over FTP, as
// the folder list does.
int PutOverFtp(const CliContext& ctx, const FileOperand& source, const FileInfo& entry,
               const std::wstring& host, const std::wstring& folder, const std::wstring& name,
               TerminalProgress& progress, const std::string& verb) {
    const std::wstring finalName = MakeFilename(folder, name, host);
    StdioFile in;
    if (!in.Open(source.path, L"rb")) {
        PrintFileError(ctx, verb + " " + source.text, in.GetError(), in.GetErrorText());
        return ExitCodeFor(in.GetError());
    }
    const std::wstring temporaryName = MakeFilename(folder, kCopyTemporaryPrefix + name, host);
    StdioFile out;
    if (!out.Open(temporaryName, L"wb")) {
        PrintFileError(ctx, verb + " " + ToUtf8(finalName) + " (over FTP)", out.GetError(),
                       out.GetErrorText());
        return ExitCodeFor(out.GetError());
    }
    progress.SetCurrentFile(source.path);
    progress.SetFileSize(entry.size);
    FtpPutInPlace overFtp;
    SafeCopy copy{.in = in,
                  .out = out,
                  .temporaryName = temporaryName,
                  .finalName = finalName,
                  .placer = overFtp,
                  .progress = &progress};
    int error = 0;
    std::wstring text;
    if (!copy.Run(&error, &text)) {
        PrintFileError(ctx, verb + " " + source.text, error, text);
        return ExitCodeFor(error);
    }
    if (ctx.options.verbose)
        std::cerr << "vexa: " << source.text << " -> " << ToUtf8(finalName) << " over FTP ("
                  << progress.BytesMoved() << " bytes)\n";
    return kExitOk;
}

} // namespace

nlohmann::ordered_json EntryJson(const FileInfo& entry) {
    return {{"name", ToUtf8(entry.name)}, {"size", entry.size},        {"folder", entry.IsFolder()},
            {"attributes", entry.attrib}, {"created", entry.times[0]}, {"accessed", entry.times[1]},
            {"modified", entry.times[2]}};
}

std::string EntryTimeText(int64_t microseconds) {
    const time_t seconds = time_t(microseconds / 1000000);
    tm local{};
    localtime_r(&seconds, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    return text;
}

VEXASensorObject* HostSessions::Linked(const std::wstring& host, int* error) {
    Entry& entry = m_sessions[host];
    if (!entry.session) {
        entry.session = std::make_unique<CliSession>();
        entry.linked = entry.session->Connect(host, &entry.error);
    }
    if (error)
        *error = entry.error;
    return entry.linked ? entry.session->Sensor() : nullptr;
}

std::wstring FileOperand::Name() const {
    return MakeFilename(L"", path, host);
}

bool ParseFileOperand(const CliContext& ctx, const std::string& text, FileOperand* out) {
    out->text = text;
    const std::wstring name = FromUtf8(text);
    if (!IsRemoteFilename(name)) {
        if (name.empty()) {
            PrintError(ctx, "an empty file name", 0);
            return false;
        }
        const bool folder = name.back() == L'/';
        out->host.clear();
        out->path = GetFullPath(name);
        if (folder && (out->path.empty() || out->path.back() != L'/'))
            out->path += L'/';
        return true;
    }
    std::wstring host, path;
    if (!SplitRemoteName(name, &host, &path) || !ISensorAddress(host).IsValid()) {
        PrintError(ctx, text + ": not an instrument file name (use @HOST:/PATH)", 0);
        return false;
    }
    if (path.empty() || path.front() != L'/') {
        PrintError(ctx, text + ": instrument paths start with /", 0);
        return false;
    }
    out->host = host;
    out->path = path;
    return true;
}

void PrintFileError(const CliContext& ctx, const std::string& what, int error, const std::wstring& text) {
    if (error == ECANCELED) {
        PrintError(ctx, what + ": cancelled", 0);
        return;
    }
    PrintError(ctx, what, error, text == L"cancelled" ? std::wstring() : text);
}

int PrintFolderError(const CliContext& ctx, const std::string& what, const VXSFileInfoImpl& impl) {
    int error = impl.GetError();
    std::wstring text = impl.GetErrorText();
    if (error == 0 && impl.LastReplyStatus() != 0) {
        error = int(impl.LastReplyStatus());
        text = impl.LastReplyText();
    }
    if (error == 0)
        error = kErrInvalid;
    PrintFileError(ctx, what, error, text);
    return ExitCodeFor(error);
}

bool IsUnreachableError(int error) {
    switch (error) {
    case kWsaNotConn:
    case kWsaTimedOut:
    case kWsaConnRefused:
    case kWsaConnReset:
    case kWsaConnAborted:
    case kWsaHostUnreach:
    case kWsaNetUnreach:
    case kWsaHostDown:
    case kFtpCurlErrorBase + CURLE_COULDNT_RESOLVE_HOST:
    case kFtpCurlErrorBase + CURLE_COULDNT_CONNECT:
    case kFtpCurlErrorBase + CURLE_OPERATION_TIMEDOUT:
        return true;
    default:
        return false;
    }
}

int ExitCodeFor(int error) {
    return IsUnreachableError(error) ? kExitUnreachable : kExitFailed;
}

int ConnectForLink(const CliContext& ctx, CliSession& session, const FileOperand& operand) {
    if (!ISensorAddress(operand.host).IsValid()) {
        PrintError(ctx, operand.text + ": not an instrument address", 0);
        return kExitUsage;
    }
    int error = 0;
    if (session.Connect(operand.host, &error))
        return kExitOk;
    PrintError(ctx, ToUtf8(operand.host) + ": cannot reach the instrument", error);
    return kExitUnreachable;
}

InterruptGuard::InterruptGuard() {
    if (g_guards++ == 0) {
        g_interrupted = false;
        g_previousHandler = std::signal(SIGINT, OnTransferInterrupt);
    }
}

InterruptGuard::~InterruptGuard() {
    if (--g_guards == 0)
        std::signal(SIGINT, g_previousHandler);
}

bool InterruptGuard::Interrupted() {
    return g_interrupted.load();
}

TerminalProgress::TerminalProgress(const CliContext& ctx)
    : m_enabled(!ctx.options.quiet && IsTerminal(STDERR_FILENO)), m_start(TickCount()) {}

TerminalProgress::~TerminalProgress() {
    std::lock_guard lock(m_mutex);
    if (m_drawn)
        std::cerr << "\n";
}

void TerminalProgress::SetCurrentFile(const std::wstring& name) {
    std::lock_guard lock(m_mutex);
    m_file = name;
    m_fileBytes = 0;
    m_fileSize = -1;
    ++m_filesStarted;
}

void TerminalProgress::SetFileSize(int64_t bytes) {
    std::lock_guard lock(m_mutex);
    m_fileSize = bytes;
}

void TerminalProgress::SetTotal(int64_t bytes, int files) {
    std::lock_guard lock(m_mutex);
    m_jobBytes = bytes;
    m_jobFiles = files;
}

void TerminalProgress::AddBytes(int64_t bytes) {
    m_total += bytes;
    std::lock_guard lock(m_mutex);
    m_fileBytes += bytes;
    if (TickCount() - m_lastDraw >= 100)
        Draw(false);
}

bool TerminalProgress::IsCancelled() const {
    return InterruptGuard::Interrupted();
}

void TerminalProgress::SetDone() {
    std::lock_guard lock(m_mutex);
    Draw(true);
}

// Called with the lock held.
void TerminalProgress::Draw(bool final) {
    if (!m_enabled || (final && !m_drawn && m_total == 0))
        return;
    m_lastDraw = TickCount();
    const double seconds = std::max(0.001, (TickCount() - m_start) / 1000.0);
    const double speed = double(m_total.load()) / seconds;
    // A job of several files shows the job's share; a single file its own.
    const bool job = m_jobBytes > 0 && m_jobFiles > 1;
    const int64_t done = job ? m_total.load() : m_fileBytes;
    const int64_t size = job ? m_jobBytes : m_fileSize;
    std::string name = ToUtf8(LastPathPart(m_file));
    if (name.size() > 28)
        name = name.substr(0, 25) + "...";
    std::string line = name;
    if (job)
        line += " (" + std::to_string(m_filesStarted) + "/" + std::to_string(m_jobFiles) + ")";
    if (size > 0) {
        const double share = std::min(1.0, double(done) / double(size));
        const int width = 24, filled = int(share * width);
        line += " [" + std::string(size_t(filled), '#') + std::string(size_t(width - filled), ' ') + "] ";
        char percent[8];
        std::snprintf(percent, sizeof percent, "%3d%%", int(share * 100));
        line += percent;
    }
    line += "  " + HumanBytes(double(done)) + "  " + HumanBytes(speed) + "/s";
    if (size > 0 && !final)
        line += "  ETA " + Clock(speed > 0 ? double(size - done) / speed : -1);
    std::cerr << "\r" << line << "\x1b[K" << std::flush;
    m_drawn = true;
}

OverwritePolicy::OverwritePolicy(const CliContext& ctx, const std::string& option)
    : m_ctx(ctx), m_terminal(IsTerminal(STDIN_FILENO) && IsTerminal(STDERR_FILENO)) {
    if (option == "yes")
        m_fixed = OverwriteAnswer::kYes;
    else if (option == "no")
        m_fixed = OverwriteAnswer::kNo;
}

OverwriteAnswer OverwritePolicy::Ask(const std::wstring& name, const std::wstring& target) {
    if (m_fixed)
        return *m_fixed;
    if (!m_terminal) {
        PrintError(m_ctx, ToUtf8(target) + " exists; pass --overwrite yes or --overwrite no", 0);
        m_refused = true;
        return OverwriteAnswer::kCancel;
    }
    for (int attempt = 0; attempt < 10; ++attempt) {
        std::cerr << "vexa: " << ToUtf8(name) << " exists in the destination. Overwrite? "
                  << "[y]es, [n]o, [a]ll, [N]one, [c]ancel: " << std::flush;
        std::string reply;
        if (!std::getline(std::cin, reply))
            return OverwriteAnswer::kCancel;
        if (reply == "y" || reply == "yes")
            return OverwriteAnswer::kYes;
        if (reply == "n" || reply == "no")
            return OverwriteAnswer::kNo;
        if (reply == "a" || reply == "all")
            return OverwriteAnswer::kYesToAll;
        if (reply == "N" || reply == "none")
            return OverwriteAnswer::kNoToAll;
        if (reply == "c" || reply == "cancel")
            return OverwriteAnswer::kCancel;
    }
    return OverwriteAnswer::kCancel;
}

OverwriteQuestion OverwritePolicy::AsQuestion() {
    return [this](const std::wstring& name, const std::wstring& target) { return Ask(name, target); };
}

CopyOutcome CopyOneFile(const CliContext& ctx, const FileOperand& source, const FileOperand& destination,
                        OverwritePolicy& overwrite, const std::string& verb) {
    CopyOutcome outcome;
    HostSessions sessions;
    const std::string what = verb + " " + source.text;

    // The source: what it is and how large, from its own side.
    VEXASensorObject* sourceSensor = nullptr;
    FileInfo entry;
    entry.name = LastPathPart(source.path);
    if (source.IsRemote()) {
        int error = 0;
        sourceSensor = sessions.Linked(source.host, &error);
        if (sourceSensor) {
            if (!FileInfo::GetFileInfo(source.Name(), &entry, nullptr, nullptr)) {
                PrintFileError(ctx, what, FileInfo::LastError(), FileInfo::LastErrorText());
                outcome.exitCode = ExitCodeFor(FileInfo::LastError());
                return outcome;
            }
            entry.name = LastPathPart(source.path);
        } else if (ctx.options.verbose) {
            PrintError(ctx, ToUtf8(source.host) + ": link not available, reading over FTP", error);
        }
    } else if (!FileInfo::GetFileInfo(source.path, &entry, nullptr, nullptr)) {
        PrintFileError(ctx, what, FileInfo::LastError(), FileInfo::LastErrorText());
        outcome.exitCode = kExitFailed;
        return outcome;
    }
    if (IsFolderEntry(entry)) {
        PrintError(ctx, what + ": a folder (use cp -r)", 0);
        outcome.exitCode = kExitFailed;
        return outcome;
    }
    // The access rule of the file manager: data files cross between the sides only with level 0.
    if (!CSystemAccess::Accessible(0) &&
        ((source.IsRemote() && !destination.IsRemote() && IsInstrumentDataFileName(entry.name)) ||
         (!source.IsRemote() && destination.IsRemote() && IsWorkstationDataFileName(entry.name)))) {
        PrintError(
            ctx, what + ": copying data files between the instrument and this computer needs access level 0",
            0);
        outcome.exitCode = kExitFailed;
        return outcome;
    }

    // The destination: a folder to copy into, or the new file's name.
    VEXASensorObject* destinationSensor = nullptr;
    bool destinationLinked = true;
    bool intoFolder = !destination.path.empty() && destination.path.back() == L'/';
    if (destination.IsRemote()) {
        int error = 0;
        destinationSensor = sessions.Linked(destination.host, &error);
        destinationLinked = destinationSensor != nullptr;
        if (!destinationLinked && ctx.options.verbose)
            PrintError(ctx, ToUtf8(destination.host) + ": link not available, writing over FTP", error);
        FileInfo existing;
        if (destinationLinked && !intoFolder &&
            FileInfo::GetFileInfo(destination.Name(), &existing, nullptr, nullptr))
            intoFolder = IsFolderEntry(existing);
    } else if (!intoFolder) {
        intoFolder = IsDirectory(destination.path);
    }
    std::wstring folder, name;
    if (intoFolder) {
        folder = destination.path;
        while (folder.size() > 1 && folder.back() == L'/')
            folder.pop_back();
        name = entry.name;
    } else {
        folder = FolderOfPath(destination.path);
        name = LastPathPart(destination.path);
    }
    if (folder.empty() || name.empty()) {
        PrintError(ctx, destination.text + ": no file name to write", 0);
        outcome.exitCode = kExitUsage;
        return outcome;
    }
    const std::wstring finalName =
        destination.IsRemote() ? MakeFilename(folder, name, destination.host) : JoinPath(folder, name, L'/');

    // An existing file is replaced only when the user says so.
    bool exists = false;
    if (!destination.IsRemote() || destinationLinked) {
        FileInfo existing;
        exists = FileInfo::GetFileInfo(finalName, &existing, nullptr, nullptr);
        if (exists && IsFolderEntry(existing)) {
            PrintError(ctx, what + ": " + ToUtf8(finalName) + " is a folder", 0);
            outcome.exitCode = kExitFailed;
            return outcome;
        }
    } else {
        StdioFile probe;
        exists = probe.Open(finalName, L"rb");
    }
    if (exists) {
        switch (overwrite.Ask(name, finalName)) {
        case OverwriteAnswer::kYes:
        case OverwriteAnswer::kYesToAll:
            break;
        case OverwriteAnswer::kNo:
        case OverwriteAnswer::kNoToAll:
            if (!ctx.options.quiet)
                std::cerr << "vexa: " << ToUtf8(finalName) << " exists; skipped\n";
            outcome.skipped = true;
            return outcome;
        case OverwriteAnswer::kCancel:
            if (!overwrite.Refused())
                PrintError(ctx, what + ": cancelled", 0);
            outcome.exitCode = kExitFailed;
            return outcome;
        }
    }

    InterruptGuard interrupts;
    TerminalProgress progress(ctx);
    if (destination.IsRemote() && !destinationLinked) {
        outcome.exitCode = PutOverFtp(ctx, source, entry, destination.host, folder, name, progress, verb);
        return outcome;
    }
    CVexaFileList sourceList(sourceSensor,
                             CVexaFileList::FolderArgument(source.host, FolderOfPath(source.path)), false);
    CVexaFileList destinationList(destinationSensor, CVexaFileList::FolderArgument(destination.host, folder),
                                  false);
    if (!destinationList.CopyIn(entry, sourceList, &progress, name)) {
        PrintFileError(ctx, what, destinationList.LastError(), destinationList.LastErrorText());
        outcome.exitCode = ExitCodeFor(destinationList.LastError());
        return outcome;
    }
    progress.SetDone();
    if (ctx.options.verbose) {
        const std::wstring way = destinationList.LastTransport();
        std::cerr << "vexa: " << source.text << " -> " << ToUtf8(finalName) << " over " << ToUtf8(way) << " ("
                  << progress.BytesMoved() << " bytes)\n";
    }
    return outcome;
}
