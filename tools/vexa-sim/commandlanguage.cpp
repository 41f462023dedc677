// SPDX-License-Identifier: Apache-2.0
#include "commandlanguage.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <sstream>

#include "acquisitionservice.h"
#include "backupservice.h"
#include "instrumentstate.h"
#include "tunerunner.h"
#include "wireconstants.h"

namespace {

constexpr std::size_t kParameterSizeLimit = 4096;
constexpr std::uint32_t kStatusUnsupported = 95;

using Result = CommandLanguage::Result;

Result Refuse(std::uint32_t status, std::string text) {
    return Result{status, std::move(text)};
}

Result Usage(const char* usage) {
    return Refuse(wire::kStatusInvalid, std::string("usage: ") + usage);
}

std::vector<std::string> Words(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// Blank-separated words, where a word in double quotes may hold blanks and \" stands for a quote
// inside it (any other backslash is itself). An unclosed quote runs to the end of the line.
std::vector<std::string> QuotedWords(const std::string& line) {
    std::vector<std::string> words;
    std::size_t at = 0;
    for (;;) {
        at = line.find_first_not_of(" \t", at);
        if (at == std::string::npos)
            return words;
        std::string word;
        if (line[at] != '"') {
            const std::size_t end = std::min(line.find_first_of(" \t", at), line.size());
            word = line.substr(at, end - at);
            at = end;
        } else {
            for (++at; at < line.size() && line[at] != '"'; ++at) {
                if (line[at] == '\\' && at + 1 < line.size() && line[at + 1] == '"')
                    ++at;
                word += line[at];
            }
            ++at; // past the closing quote
        }
        words.push_back(std::move(word));
    }
}

// The text after the first `count` words, leading blanks removed.
std::string RestAfterWords(const std::string& line, std::size_t count) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < count; ++i) {
        at = line.find_first_not_of(" \t", at);
        at = line.find_first_of(" \t", at);
        if (at == std::string::npos)
            return {};
    }
    at = line.find_first_not_of(" \t", at);
    return at == std::string::npos ? std::string() : line.substr(at);
}

// Decimal, or hexadecimal with "0x".
bool ParseNumber(const std::string& text, std::uint32_t* value) {
    int base = 10;
    std::string digits = text;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        base = 16;
        digits = digits.substr(2);
    }
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, *value, base);
    return !digits.empty() && result.ec == std::errc() && result.ptr == end;
}

bool ParseHex(const std::string& hex, std::vector<std::uint8_t>* bytes) {
    if (hex.empty() || hex.size() % 2 != 0 || hex.size() / 2 > kParameterSizeLimit)
        return false;
    bytes->clear();
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        std::uint8_t byte = 0;
        const auto result = std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
        if (result.ec != std::errc() || result.ptr != hex.data() + i + 2)
            return false;
        bytes->push_back(byte);
    }
    return true;
}

std::string Hex(const std::vector<std::uint8_t>& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

} // namespace

CommandLanguage::CommandLanguage(InstrumentState& state, BackupService& backups, TuneRunner* tuner,
                                 AcquisitionService* acquisitions)
    : m_state(state), m_backups(backups), m_tuner(tuner), m_acquisitions(acquisitions) {}

Result CommandLanguage::Execute(const std::string& commandLine) {
    const std::vector<std::string> words = Words(commandLine);
    if (words.empty())
        return Refuse(wire::kStatusUnknownCommand, "unknown command");
    const std::string& verb = words[0];
    if (verb == "status")
        return Status(words);
    if (verb == "param")
        return Param(words);
    if (verb == "events")
        return Events(words);
    if (verb == "method")
        return Method(commandLine, words);
    if (verb == "tune")
        return Tune(commandLine, words);
    if (verb == "backup")
        return Backup(QuotedWords(commandLine));
    if (verb == "echo")
        return Echo(commandLine);
    if (verb == "date")
        return Date(words);
    if (verb == "uname")
        return Uname(words);
    return Refuse(wire::kStatusUnknownCommand, "unknown command");
}

Result CommandLanguage::Status(const std::vector<std::string>& words) {
    if (words.size() != 1)
        return Usage("status");
    return Result{0, m_state.StatusText()};
}

Result CommandLanguage::Param(const std::vector<std::string>& words) {
    std::uint32_t id = 0;
    std::uint32_t index = 0;
    if (words.size() == 5 && words[1] == "get") {
        std::uint32_t size = 0;
        if (!ParseNumber(words[2], &id) || !ParseNumber(words[3], &index) || !ParseNumber(words[4], &size) ||
            size == 0 || size > kParameterSizeLimit)
            return Usage("param get <id> <index> <size 1..4096>");
        return Result{0, Hex(m_state.GetParameter(id, index, size))};
    }
    if (words.size() == 5 && words[1] == "set") {
        std::vector<std::uint8_t> bytes;
        if (!ParseNumber(words[2], &id) || !ParseNumber(words[3], &index) || !ParseHex(words[4], &bytes))
            return Usage("param set <id> <index> <hex bytes>");
        m_state.SetParameter(id, index, std::move(bytes));
        return Result{0, "ok"};
    }
    return Usage("param get <id> <index> <size> | param set <id> <index> <hex>");
}

Result CommandLanguage::Events(const std::vector<std::string>& words) {
    if (words.size() != 1)
        return Usage("events");
    std::string text;
    for (const std::string& event : m_state.TakeEvents())
        text += event + "\n";
    return Result{0, text};
}

Result CommandLanguage::Method(const std::string& commandLine, const std::vector<std::string>& words) {
    if (words.size() == 2 && words[1] == "stop") {
        if (!(m_acquisitions != nullptr && m_acquisitions->Stop()) && !m_state.StopMethod())
            return Refuse(wire::kStatusInvalid, "no method is running");
        return Result{0, "ok"};
    }
    const std::string methodLine = RestAfterWords(commandLine, 2);
    if (words.size() < 3 || words[1] != "run" || methodLine.empty())
        return Usage("method run <command line> | method stop");
    const std::string first = QuotedWords(methodLine).front();
    if (m_acquisitions != nullptr && AcquisitionService::IsMethodName(first)) {
        std::string problem;
        const std::uint32_t status = m_acquisitions->Start(first, methodLine, &problem);
        if (status != wire::kStatusOk)
            return Refuse(status, problem);
        return Result{0, "ok"};
    }
    if (!m_state.StartMethod(methodLine))
        return Refuse(wire::kStatusBusy, "a method is already running");
    return Result{0, "ok"};
}

Result CommandLanguage::Tune(const std::string& commandLine, const std::vector<std::string>& words) {
    std::uint32_t number = 0;
    if (words.size() >= 2 && words[1] == "run")
        return TuneRun(words);
    std::string path = RestAfterWords(commandLine, 3);
    if (path.size() >= 2 && path.front() == '"' && path.back() == '"')
        path = path.substr(1, path.size() - 2);
    if (words.size() < 4 || words[1] != "manual" || !ParseNumber(words[2], &number) || path.empty())
        return Usage("tune manual <n> <path> | tune run [<n>]");
    m_state.SetManualTune(static_cast<int>(number), path);
    return Result{0, "ok"};
}

Result CommandLanguage::TuneRun(const std::vector<std::string>& words) {
    std::uint32_t number = 3;
    if (words.size() > 3 || (words.size() == 3 && !ParseNumber(words[2], &number)))
        return Usage("tune run [<n>]");
    if (m_tuner == nullptr)
        return Refuse(kStatusUnsupported, "tune not available");
    const TuneRunner::Outcome outcome = m_tuner->Run(static_cast<int>(number));
    if (outcome.status != wire::kStatusOk)
        return Refuse(outcome.status, outcome.text);
    return Result{0, outcome.text + "\n"};
}

// The answer only says whether the packing started; the outcome comes later as an event.
Result CommandLanguage::Backup(const std::vector<std::string>& words) {
    std::string problem;
    const std::uint32_t status = m_backups.Start({words.begin() + 1, words.end()}, &problem);
    if (status != 0)
        return Refuse(status, problem);
    return Result{0, "ok"};
}

Result CommandLanguage::Echo(const std::string& commandLine) {
    return Result{0, RestAfterWords(commandLine, 1) + "\n"};
}

Result CommandLanguage::Date(const std::vector<std::string>&) {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char text[64];
    std::strftime(text, sizeof text, "%a %b %e %H:%M:%S UTC %Y\n", &utc);
    return Result{0, text};
}

Result CommandLanguage::Uname(const std::vector<std::string>&) {
    return Result{0, "Linux\n"};
}
