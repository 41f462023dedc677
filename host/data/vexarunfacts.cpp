// SPDX-License-Identifier: Apache-2.0
#include "vexarunfacts.h"

#include "text.h"
#include "timeformat.h"
#include "vexamodels.h"
#include "vexarun.h"

#include <ctime>

VexaRunFacts VexaRunFacts::Of(const VexaRun& run) {
    VexaRunFacts facts;
    const std::string sample = ToUtf8(run.Parameter(L"SAMPLE"));
    facts.sample = sample.empty() ? run.SampleName() : sample;
    const std::time_t start = run.StartTime();
    std::tm utc{};
    ToUtcTime(start, &utc);
    char text[40];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &utc);
    facts.startTime = text;
    facts.method = ToUtf8(run.Parameter(L"SENSOR"));
    facts.instrument = ToUtf8(run.Parameter(L"INSTRUMENT"));
    facts.scanMode = ToUtf8(Vexa::GetScanModeName(run.IsSim() ? 1 : 0));
    const auto [low, high] = run.MassRange();
    facts.massLow = low;
    facts.massHigh = high;
    facts.scans = run.ScanCount();
    facts.runSeconds = run.RunSeconds();
    facts.stopped = run.WasStopped();
    facts.version = run.Version();
    return facts;
}
