// SPDX-License-Identifier: Apache-2.0
#pragma once
// What an instrument is doing, as its last status said: the running method or replay with its
// progress, and whether it is ready. Read from the "VEXA" device's snapshot; no network.
#include <cstdint>
#include <string>

class IDevice;

struct InstrumentActivity {
    bool hasStatus = false; // false until a status has been read since the link opened
    std::wstring process;   // the running method's command line; empty when idle
    int elapsed = -1;       // whole seconds of the running method; -1 when not reported
    int total = -1;
    bool ready = false;
    bool readyKnown = false;

    static InstrumentActivity FromDevice(const IDevice& device);

    bool IsRunning() const { return !process.empty(); }
    // 0..100, or -1 when the instrument does not report the run's length.
    int PercentDone() const;
    // The instrument path the process runs: its first word, unquoted ("/Method/Default.mth").
    std::wstring ProcessPath() const;
    // The file name of ProcessPath ("Default.mth").
    std::wstring ProcessName() const;
};

// "1:05", "12:00", "1:02:03" for whole seconds; "-" for a negative count.
std::wstring FormatRunTime(int64_t seconds);
