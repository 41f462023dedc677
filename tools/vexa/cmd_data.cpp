// SPDX-License-Identifier: Apache-2.0
// vexa data info|tic|spectrum|export FILE...: what a data file holds, on this computer or on an
// instrument (@HOST:/PATH), read through the data library; a damaged file fails with the reason.
#include "cmd_filesupport.h"
#include "runcommands.h"

#include "hostsessions.h"
#include "text.h"
#include "timespan.h"
#include "vexadatafile.h"
#include "vexaexport.h"
#include "vexarun.h"
#include "vexarunfacts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <tuple>

namespace {

struct DataArgs {
    std::vector<std::string> files;
    bool json = false;
    // spectrum and export
    double time = NAN; // NAN: not given
    double to = NAN;
    std::string background; // "A..B"
    // tic and export
    std::vector<double> masses;
    double tolerance = 0.5;
    // export
    std::string format;
    std::string output;
};

bool Json(const CliContext& ctx, const DataArgs& args) {
    return args.json || ctx.options.json;
}

// Reads one data file; prints why not and returns the exit code when it cannot.
int ReadRunOperand(CliContext& ctx, HostSessions& sessions, const std::string& text, VexaRun* run) {
    FileOperand file;
    if (!ParseFileOperand(ctx, text, &file))
        return kExitUsage;
    int error = 0;
    if (file.IsRemote() && !sessions.Linked(file.host, &error)) {
        PrintError(ctx, text + ": cannot reach the instrument", error);
        return kExitUnreachable;
    }
    std::string reason;
    if (!VexaDataFile::LoadRun(file.Name(), run, &reason)) {
        std::cerr << "vexa: " << text << ": " << reason << "\n";
        return kExitFailed;
    }
    return kExitOk;
}

bool ParseRange(const std::string& text, double* from, double* to) {
    const size_t dots = text.find("..");
    if (dots == std::string::npos)
        return false;
    char* end = nullptr;
    const std::string first = text.substr(0, dots);
    const std::string second = text.substr(dots + 2);
    *from = std::strtod(first.c_str(), &end);
    if (first.empty() || *end != '\0')
        return false;
    *to = std::strtod(second.c_str(), &end);
    return !second.empty() && *end == '\0';
}

// The spectrum the arguments ask for: one scan, a range's average, minus a background range's average.
struct ChosenSpectrum {
    VexaSpectrum spectrum;
    VexaExport::SpectrumOrigin origin;
};

int ChooseSpectrum(CliContext& ctx, const std::string& file, const VexaRun& run, const DataArgs& args,
                   ChosenSpectrum* chosen) {
    if (!run.HasSpectra() || run.ScanCount() == 0) {
        std::cerr << "vexa: " << file << ": the file holds no spectra (version " << run.Version() << ")\n";
        return kExitFailed;
    }
    // Without a time: the scan at the top of the chromatogram.
    size_t first = 0;
    size_t last = 0;
    if (!std::isnan(args.time) && !std::isnan(args.to)) {
        std::tie(first, last) = run.ScansBetween(args.time, args.to);
    } else if (!std::isnan(args.time)) {
        first = last = run.ScanNearest(args.time);
    } else {
        const auto& tic = run.Tic();
        first = last = static_cast<size_t>(std::max_element(tic.begin(), tic.end()) - tic.begin());
    }
    chosen->spectrum = first == last ? run.Spectrum(first) : run.Average(first, last);
    chosen->origin.file = file;
    chosen->origin.fromSeconds = run.TimeSeconds(first);
    chosen->origin.toSeconds = run.TimeSeconds(last);
    char name[96];
    std::snprintf(name, sizeof name, " %.3f s", run.TimeSeconds(first));
    chosen->origin.name = VexaRunFacts::Of(run).sample + name;
    if (!args.background.empty()) {
        double from = 0;
        double to = 0;
        if (!ParseRange(args.background, &from, &to)) {
            PrintError(ctx, "--background needs a range of seconds like 60..65", 0);
            return kExitUsage;
        }
        const auto [bgFirst, bgLast] = run.ScansBetween(from, to);
        chosen->spectrum = chosen->spectrum.Minus(run.Average(bgFirst, bgLast));
        chosen->origin.hasBackground = true;
        chosen->origin.backgroundFrom = run.TimeSeconds(bgFirst);
        chosen->origin.backgroundTo = run.TimeSeconds(bgLast);
    }
    return kExitOk;
}

nlohmann::ordered_json FactsJson(const std::string& file, const VexaRunFacts& facts) {
    return {{"file", file},
            {"sample", facts.sample},
            {"startTime", facts.startTime},
            {"method", facts.method},
            {"instrument", facts.instrument},
            {"scanMode", facts.scanMode},
            {"massLow", facts.massLow},
            {"massHigh", facts.massHigh},
            {"scans", facts.scans},
            {"runSeconds", facts.runSeconds},
            {"stopped", facts.stopped},
            {"version", facts.version}};
}

void PrintFacts(const std::string& file, const VexaRunFacts& facts) {
    std::cout << file << "\n"
              << "  sample:      " << facts.sample << "\n"
              << "  started:     " << facts.startTime << "\n"
              << "  method:      " << facts.method << "\n"
              << "  instrument:  " << facts.instrument << "\n"
              << "  scan mode:   " << facts.scanMode << ", m/z " << VexaExport::FormatNumber(facts.massLow)
              << "-" << VexaExport::FormatNumber(facts.massHigh) << "\n"
              << "  scans:       " << facts.scans << (facts.version < 2 ? " (version 1: no spectra)" : "")
              << "\n"
              << "  run time:    " << ToUtf8(FormatTimeSpan(std::llround(facts.runSeconds)))
              << (facts.stopped ? " (stopped early)" : "") << "\n";
}

int RunInfo(CliContext& ctx, const DataArgs& args) {
    HostSessions sessions;
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    int result = kExitOk;
    for (const std::string& file : args.files) {
        VexaRun run;
        if (const int code = ReadRunOperand(ctx, sessions, file, &run)) {
            result = std::max(result, code);
            continue;
        }
        if (Json(ctx, args))
            all.push_back(FactsJson(file, VexaRunFacts::Of(run)));
        else
            PrintFacts(file, VexaRunFacts::Of(run));
    }
    if (Json(ctx, args))
        std::cout << all.dump(2) << "\n";
    return result;
}

int RunTic(CliContext& ctx, const DataArgs& args) {
    HostSessions sessions;
    VexaRun run;
    if (const int code = ReadRunOperand(ctx, sessions, args.files.front(), &run))
        return code;
    std::cout << VexaExport::ChromatogramCsv(run, args.masses, args.tolerance);
    return kExitOk;
}

int RunSpectrum(CliContext& ctx, const DataArgs& args) {
    HostSessions sessions;
    VexaRun run;
    ChosenSpectrum chosen;
    if (const int code = ReadRunOperand(ctx, sessions, args.files.front(), &run))
        return code;
    if (const int code = ChooseSpectrum(ctx, args.files.front(), run, args, &chosen))
        return code;
    const VexaSpectrum& spectrum = chosen.spectrum;
    const double base = spectrum.BasePeak();
    if (Json(ctx, args)) {
        nlohmann::ordered_json out{{"file", args.files.front()},
                                   {"from", chosen.origin.fromSeconds},
                                   {"to", chosen.origin.toSeconds},
                                   {"mz", spectrum.mz},
                                   {"intensity", spectrum.intensity}};
        if (chosen.origin.hasBackground)
            out["background"] = {chosen.origin.backgroundFrom, chosen.origin.backgroundTo};
        std::cout << out.dump() << "\n";
        return kExitOk;
    }
    std::printf("# %s, %.3f-%.3f s%s\n# m/z intensity relative%%\n", args.files.front().c_str(),
                chosen.origin.fromSeconds, chosen.origin.toSeconds,
                chosen.origin.hasBackground ? ", background subtracted" : "");
    for (size_t i = 0; i < spectrum.size(); ++i)
        std::printf("%s %s %.2f\n", VexaExport::FormatNumber(spectrum.mz[i]).c_str(),
                    VexaExport::FormatNumber(spectrum.intensity[i]).c_str(),
                    base > 0 ? spectrum.intensity[i] * 100.0 / base : 0.0);
    return kExitOk;
}

bool WriteText(const std::string& path, const std::string& text, std::string* reason) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    if (!file.flush()) {
        *reason = "cannot write " + path;
        return false;
    }
    return true;
}

int RunExport(CliContext& ctx, const DataArgs& args) {
    HostSessions sessions;
    VexaRun run;
    const std::string& file = args.files.front();
    if (const int code = ReadRunOperand(ctx, sessions, file, &run))
        return code;
    std::string reason;
    bool written = false;
    if (args.format == "andi") {
        written = VexaExport::WriteAndi(run, args.output, &reason);
    } else if (args.format == "csv" && std::isnan(args.time)) {
        written =
            WriteText(args.output, VexaExport::ChromatogramCsv(run, args.masses, args.tolerance), &reason);
    } else {
        ChosenSpectrum chosen;
        if (const int code = ChooseSpectrum(ctx, file, run, args, &chosen))
            return code;
        written = WriteText(args.output,
                            args.format == "msp" ? VexaExport::MakeMsp(chosen.spectrum, chosen.origin)
                                                 : VexaExport::SpectrumCsv(chosen.spectrum),
                            &reason);
    }
    if (!written) {
        std::cerr << "vexa: " << file << ": " << reason << "\n";
        return kExitFailed;
    }
    if (ctx.options.json)
        std::cout
            << nlohmann::ordered_json{{"file", file}, {"format", args.format}, {"output", args.output}}.dump()
            << "\n";
    else if (!ctx.options.quiet)
        std::cout << "data: " << file << " exported to " << args.output << "\n";
    return kExitOk;
}

void AddSpectrumOptions(CLI::App* cmd, DataArgs& args) {
    cmd->add_option("--time", args.time, "Seconds: the scan nearest this time (default: the TIC's top)");
    cmd->add_option("--to", args.to, "Seconds: average the scans from --time to this time");
    cmd->add_option("--background", args.background, "Seconds A..B: subtract the average of these scans");
}

void AddTraceOptions(CLI::App* cmd, DataArgs& args) {
    cmd->add_option("--mz", args.masses, "Add an extracted-ion column for this m/z (repeatable)");
    cmd->add_option("--tolerance", args.tolerance, "m/z tolerance of the extracted ions (default 0.5)")
        ->check(CLI::Range(0.0, 100.0));
}

} // namespace

void AddDataCommand(CLI::App& app, CliContext& ctx) {
    auto* data = app.add_subcommand("data", "Read data files: facts, chromatogram, spectra, exports");
    data->require_subcommand(1);

    auto info = std::make_shared<DataArgs>();
    auto* infoCmd = data->add_subcommand("info", "Print what a data file says about its run");
    infoCmd->add_flag("--json", info->json, "Print the facts as a JSON array");
    infoCmd->add_option("FILE", info->files, "Data files, local or @HOST:/PATH")->required();
    infoCmd->callback([&ctx, info] { ctx.exitCode = RunInfo(ctx, *info); });

    auto tic = std::make_shared<DataArgs>();
    auto* ticCmd = data->add_subcommand("tic", "Print the chromatogram as CSV (time_s,tic[,mz_M...])");
    AddTraceOptions(ticCmd, *tic);
    ticCmd->add_option("FILE", tic->files, "A data file, local or @HOST:/PATH")->required()->expected(1);
    ticCmd->callback([&ctx, tic] { ctx.exitCode = RunTic(ctx, *tic); });

    auto spectrum = std::make_shared<DataArgs>();
    auto* spectrumCmd = data->add_subcommand("spectrum", "Print a spectrum: m/z, intensity, relative %");
    AddSpectrumOptions(spectrumCmd, *spectrum);
    spectrumCmd->add_flag("--json", spectrum->json, "Print the spectrum as JSON");
    spectrumCmd->add_option("FILE", spectrum->files, "A data file, local or @HOST:/PATH")
        ->required()
        ->expected(1);
    spectrumCmd->callback([&ctx, spectrum] { ctx.exitCode = RunSpectrum(ctx, *spectrum); });

    auto exported = std::make_shared<DataArgs>();
    auto* exportCmd = data->add_subcommand(
        "export", "Export the run (andi), a spectrum (msp, or csv with --time) or the chromatogram (csv)");
    exportCmd->add_option("--format", exported->format, "andi, msp or csv")
        ->required()
        ->check(CLI::IsMember({"andi", "msp", "csv"}));
    exportCmd->add_option("-o,--output", exported->output, "The file to write")->required();
    AddSpectrumOptions(exportCmd, *exported);
    AddTraceOptions(exportCmd, *exported);
    exportCmd->add_option("FILE", exported->files, "A data file, local or @HOST:/PATH")
        ->required()
        ->expected(1);
    exportCmd->callback([&ctx, exported] { ctx.exitCode = RunExport(ctx, *exported); });
}
