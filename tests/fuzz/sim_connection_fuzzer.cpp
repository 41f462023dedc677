// SPDX-License-Identifier: Apache-2.0
// The simulator's side of one connection fed with the fuzzer's bytes: frame headers, request decoding,
// every file command with its path confinement, uploads and the command language. After every run the
// folder beside the served root must be exactly as it was: a request that reaches it is an escape,
// and the run aborts.
#include "backupservice.h"
#include "commandlanguage.h"
#include "deviceprofile.h"
#include "faultplan.h"
#include "fileservice.h"
#include "instrumentstate.h"
#include "pathconfinement.h"
#include "simconnection.h"
#include "tracelog.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr const char* kSecret = "never served";

void WriteText(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string ReadText(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// A served root with a little tree and links that lead out, and a folder beside it that must never
// change.
struct Playground {
    fs::path base = fs::temp_directory_path() / ("vexa-sim-fuzz-" + std::to_string(::getpid()));
    fs::path root = base / "root";
    fs::path outside = base / "outside";

    Playground() {
        fs::create_directories(outside);
        WriteText(outside / "secret.txt", kSecret);
        Reset();
    }
    ~Playground() {
        std::error_code ignored;
        fs::remove_all(base, ignored);
    }
    void Reset() {
        std::error_code ignored;
        fs::remove_all(root, ignored);
        fs::create_directories(root / "Data" / "Sub");
        WriteText(root / "Data" / "run1.vxs", std::string(3000, 'x'));
        WriteText(root / "hosts", "127.0.0.1 localhost\n");
        fs::create_directory_symlink(outside, root / "Escape");
        fs::create_symlink("../../outside/secret.txt", root / "Data" / "relative.vxs");
    }
    void CheckOutsideUntouched() const {
        int entries = 0;
        for (const auto& entry : fs::directory_iterator(outside)) {
            (void)entry;
            ++entries;
        }
        if (entries != 1 || ReadText(outside / "secret.txt") != kSecret)
            std::abort(); // a request reached past the served root
    }
};

// Feeds the input to the connection's socket while taking its answers off, so neither side blocks.
void PlayPeer(int fd, const uint8_t* data, size_t size) {
    size_t sent = 0;
    bool shut = false;
    char sink[65536];
    for (;;) {
        if (sent == size && !shut) {
            ::shutdown(fd, SHUT_WR);
            shut = true;
        }
        pollfd watched{fd, short(POLLIN | (shut ? 0 : POLLOUT)), 0};
        if (::poll(&watched, 1, 5000) <= 0)
            return;
        if (watched.revents & POLLIN) {
            const ssize_t got = ::read(fd, sink, sizeof sink);
            if (got <= 0)
                return;
        }
        if (!shut && (watched.revents & POLLOUT)) {
            const ssize_t put = ::send(fd, data + sent, size - sent, MSG_NOSIGNAL);
            if (put < 0)
                return;
            sent += size_t(put);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Playground playground;
    static TraceLog log(false);
    static const PathConfinement paths(playground.root);
    static const FileService files(paths, true);
    static InstrumentState state(DeviceProfile::Default());
    static const FaultPlan faults;
    // Backup items are paths from the peer too: they must stay inside the root like every other name.
    static BackupService backups(paths, state, faults);
    static CommandLanguage commands(state, backups);
    static int runs = 0;
    if (++runs % 500 == 0)
        playground.Reset();

    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        std::abort();
    std::thread peer([&] {
        PlayPeer(ends[1], data, size);
        ::close(ends[1]);
    });
    {
        SimConnection connection(ends[0], runs, SimServices{files, commands, faults, log});
        connection.Run();
    }
    peer.join();
    playground.CheckOutsideUntouched();
    return 0;
}
