// SPDX-License-Identifier: Apache-2.0
#include "simoptions.h"

#include <charconv>
#include <cstdlib>

namespace {
constexpr int kMaxReplyDelayMs = 60000;
}

SimOptions::Outcome SimOptions::Parse(int argc, char** argv, std::string* problem) {
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        auto value = [&](std::string* out) {
            if (i + 1 >= argc) {
                *problem = option + " needs a value";
                return false;
            }
            *out = argv[++i];
            return true;
        };
        std::string text;
        if (option == "--help" || option == "-h") {
            return Outcome::Help;
        } else if (option == "--version") {
            return Outcome::Version;
        } else if (option == "--root") {
            if (!value(&root))
                return Outcome::Error;
        } else if (option == "--address") {
            if (!value(&address))
                return Outcome::Error;
        } else if (option == "--port") {
            if (!value(&text))
                return Outcome::Error;
            const auto result = std::from_chars(text.data(), text.data() + text.size(), port);
            if (result.ec != std::errc() || result.ptr != text.data() + text.size() || port == 0) {
                *problem = "--port needs a number from 1 to 65535";
                return Outcome::Error;
            }
        } else if (option == "--profile") {
            if (!value(&profile))
                return Outcome::Error;
        } else if (option == "--demo") {
            demo = true;
        } else if (option == "--trace") {
            trace = true;
        } else if (option == "--no-compress") {
            compress = false;
        } else if (option == "--reply-delay") {
            if (!value(&text))
                return Outcome::Error;
            const auto result = std::from_chars(text.data(), text.data() + text.size(), replyDelayMs);
            if (result.ec != std::errc() || result.ptr != text.data() + text.size() || replyDelayMs < 0 ||
                replyDelayMs > kMaxReplyDelayMs) {
                *problem = "--reply-delay needs a number of milliseconds from 0 to 60000";
                return Outcome::Error;
            }
        } else if (option == "--time-scale") {
            if (!value(&text))
                return Outcome::Error;
            char* end = nullptr;
            timeScale = std::strtod(text.c_str(), &end);
            if (text.empty() || *end != '\0' || !(timeScale >= 0.01 && timeScale <= 10000)) {
                *problem = "--time-scale needs a factor from 0.01 to 10000";
                return Outcome::Error;
            }
        } else if (option == "--sample") {
            if (!value(&sample))
                return Outcome::Error;
        } else if (option == "--seed") {
            if (!value(&text))
                return Outcome::Error;
            const auto result = std::from_chars(text.data(), text.data() + text.size(), seed);
            if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
                *problem = "--seed needs a whole number";
                return Outcome::Error;
            }
        } else if (option == "--fault") {
            if (!value(&text) || !faults.Add(text, problem))
                return Outcome::Error;
        } else {
            *problem = "unknown option " + option;
            return Outcome::Error;
        }
    }
    if (root.empty() && !demo) {
        *problem = "--root or --demo is required";
        return Outcome::Error;
    }
    return Outcome::Run;
}

std::string SimOptions::Usage() {
    return "usage: vexa-sim {--root DIR | --demo [--root DIR]} [--address 127.0.0.1] [--port 4840]\n"
           "                [--profile FILE.json]\n"
           "                [--trace] [--no-compress] [--reply-delay MS] [--fault FAULT ...]\n"
           "                [--time-scale F] [--sample FILE.json] [--seed N]\n"
           "       vexa-sim --help | --version\n"
           "Serves DIR as the instrument's file system on the instrument link.\n"
           "  --demo         serve a copy of the demo instrument, made in DIR (default\n"
           "                 ~/.local/share/vexa-sim/demo) when DIR does not exist yet\n"
           "  --time-scale F    acquisitions run F times faster than their methods say\n"
           "  --sample FILE     the sample acquisitions measure (default: DIR/Lib/Mixture.json)\n"
           "  --seed N          the seed of the acquisitions' noise (same seed, same data)\n"
           "  --trace        log every frame received and sent on stderr\n"
           "  --no-compress  never compress file data\n"
           "  --reply-delay MS  answer every request MS milliseconds late (a slow network)\n"
           "  --fault FAULT  stall-after=N | trickle=MS | close-mid-frame=N | oversize |\n"
           "                 reply-status=S | drop-after-frames=N\n"
           "                 (repeatable; applies to the file service, not to commands)\n"
           "                 backup-abort | backup-hang | backup-slow=MS (the instrument's backup)\n"
           "                 rate=KIB (file data at no more than KIB KiB/s)\n"
           "                 outage=AFTER_MS:FOR_MS (every connection closed and new ones refused,\n"
           "                 counted from the start; repeatable)\n";
}
