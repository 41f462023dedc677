// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's command language (request command 8): status, param get/set, events,
// method run, tune manual, backup, and the harmless echo, date and uname. Thread-safe; every
// connection shares one.
#include <cstdint>
#include <string>
#include <vector>

class AcquisitionService;
class BackupService;
class InstrumentState;
class TuneRunner;

class CommandLanguage {
public:
    struct Result {
        std::uint32_t status = 0; // non-zero: refused, `text` says why
        std::string text;
    };

    // Without a tune runner `tune run` is refused; without an acquisition service every `method run`
    // is a replay.
    CommandLanguage(InstrumentState& state, BackupService& backups, TuneRunner* tuner = nullptr,
                    AcquisitionService* acquisitions = nullptr);

    Result Execute(const std::string& commandLine);

private:
    Result Status(const std::vector<std::string>& words);
    Result Param(const std::vector<std::string>& words);
    Result Events(const std::vector<std::string>& words);
    Result Method(const std::string& commandLine, const std::vector<std::string>& words);
    Result Tune(const std::string& commandLine, const std::vector<std::string>& words);
    Result TuneRun(const std::vector<std::string>& words);
    Result Backup(const std::vector<std::string>& words);
    Result Echo(const std::string& commandLine);
    Result Date(const std::vector<std::string>& words);
    Result Uname(const std::vector<std::string>& words);

    InstrumentState& m_state;
    BackupService& m_backups;
    TuneRunner* m_tuner;
    AcquisitionService* m_acquisitions;
};
