// SPDX-License-Identifier: Apache-2.0
#include "pdfpages.h"

#include "processrun.h"

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>

namespace {

// The program's full path from PATH (the process runner does not search it).
std::string Tool(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/usr/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::filesystem::path candidate = std::filesystem::path(folder) / name;
        if (std::filesystem::exists(candidate))
            return candidate.string();
    }
    return "/usr/bin/" + name;
}

} // namespace

int PdfPageCount(const std::string& pdf) {
    const ProcessResult info = RunProcess(Tool("pdfinfo"), {pdf}, 30000);
    std::smatch match;
    static const std::regex pages(R"(Pages:\s+(\d+))");
    if (info.exitCode != 0 || !std::regex_search(info.out, match, pages))
        return -1;
    return std::atoi(match[1].str().c_str());
}

std::string PdfText(const std::string& pdf, int page) {
    std::vector<std::string> args = {"-layout"};
    if (page > 0)
        args.insert(args.end(), {"-f", std::to_string(page), "-l", std::to_string(page)});
    args.insert(args.end(), {pdf, "-"});
    return RunProcess(Tool("pdftotext"), args, 30000).out;
}

std::optional<PdfWordBox> PdfFindWord(const std::string& pdf, const std::string& word) {
    const ProcessResult boxes =
        RunProcess(Tool("pdftotext"), {"-bbox", "-f", "1", "-l", "1", pdf, "-"}, 30000);
    // <word xMin="90.000000" yMin="72.500000" xMax="..." yMax="...">word</word>
    const std::regex line(R"rx(<word xMin="([0-9.]+)" yMin="([0-9.]+)"[^>]*>([^<]*)</word>)rx");
    for (auto it = std::sregex_iterator(boxes.out.begin(), boxes.out.end(), line);
         it != std::sregex_iterator(); ++it) {
        if ((*it)[3].str() == word)
            return PdfWordBox{std::atof((*it)[1].str().c_str()), std::atof((*it)[2].str().c_str())};
    }
    return std::nullopt;
}
