// SPDX-License-Identifier: Apache-2.0
// vexa-sim: a stand-in for the instrument on the other end of the link.
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

#include "acquisitionservice.h"
#include "backupservice.h"
#include "commandlanguage.h"
#include "demoinstrument.h"
#include "deviceprofile.h"
#include "fileservice.h"
#include "instrumentstate.h"
#include "pathconfinement.h"
#include "samplemixture.h"
#include "simoptions.h"
#include "simserver.h"
#include "tracelog.h"
#include "tunerunner.h"
#include "vexaversion.h"

namespace {

int g_wakeWrite = -1;

void OnStopSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t ignored = ::write(g_wakeWrite, &byte, 1);
}

bool InstallStopSignals(int* wakeRead) {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    *wakeRead = fds[0];
    g_wakeWrite = fds[1];
    struct sigaction action {};
    action.sa_handler = OnStopSignal;
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    SimOptions options;
    std::string problem;
    switch (options.Parse(argc, argv, &problem)) {
    case SimOptions::Outcome::Help:
        std::fputs(SimOptions::Usage().c_str(), stdout);
        return 0;
    case SimOptions::Outcome::Version:
        std::puts(VexaVersionLine("vexa-sim").c_str());
        return 0;
    case SimOptions::Outcome::Error:
        std::fprintf(stderr, "vexa-sim: %s\n%s", problem.c_str(), SimOptions::Usage().c_str());
        return 2;
    case SimOptions::Outcome::Run:
        break;
    }

    if (options.demo) {
        if (options.root.empty())
            options.root = demo_instrument::DefaultRoot().string();
        if (!demo_instrument::Prepare(options.root, &problem)) {
            std::fprintf(stderr, "vexa-sim: %s\n", problem.c_str());
            return 1;
        }
    }
    std::error_code error;
    if (!std::filesystem::is_directory(options.root, error)) {
        std::fprintf(stderr, "vexa-sim: %s is not a folder\n", options.root.c_str());
        return 1;
    }
    DeviceProfile profile = DeviceProfile::Default();
    if (!options.profile.empty() && !profile.LoadFile(options.profile, &problem)) {
        std::fprintf(stderr, "vexa-sim: %s\n", problem.c_str());
        return 1;
    }

    SampleMixture sample;
    if (!options.sample.empty() && !sample.LoadFile(options.sample, &problem)) {
        std::fprintf(stderr, "vexa-sim: %s\n", problem.c_str());
        return 1;
    }

    TraceLog log(options.trace);
    const PathConfinement paths(options.root);
    const FileService files(paths, options.compress);
    InstrumentState state(std::move(profile));
    if (!options.profile.empty())
        state.WatchProfile(options.profile);
    TuneRunner tuner(paths, state);
    BackupService backups(paths, state, options.faults);
    AcquisitionService acquisitions(paths, state, {options.timeScale, options.sample, options.seed});
    CommandLanguage commands(state, backups, &tuner, &acquisitions);
    SimServer server(SimServices{files, commands, options.faults, log, options.replyDelayMs});

    int wakeRead = -1;
    if (!InstallStopSignals(&wakeRead)) {
        std::perror("vexa-sim: pipe");
        return 1;
    }
    if (!server.Listen(options.address, options.port, &problem)) {
        std::fprintf(stderr, "vexa-sim: %s\n", problem.c_str());
        return 1;
    }
    std::printf("vexa-sim: serving %s on %s:%u\n", paths.root().c_str(), options.address.c_str(),
                static_cast<unsigned>(options.port));
    std::fflush(stdout);
    if (!options.faults.empty())
        log.Note("faults: " + options.faults.Describe());
    server.Serve(wakeRead);
    log.Note("stopped");
    return 0;
}
