// SPDX-License-Identifier: Apache-2.0
#include "vexadatafile.h"

#include "compression.h"
#include "text.h"
#include "vexarun.h"
#include "wholefile.h"
#include "winsockerror.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

namespace VexaDataFile {

namespace {

constexpr char kMagic[] = "VXS1";
constexpr char kParameterMagic[] = "PARM";

uint32_t ReadLe32(std::string_view bytes, size_t at) {
    uint32_t value = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&value, bytes.data() + at, sizeof value);
        return value;
    }
    for (int i = 3; i >= 0; --i)
        value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

float ReadFloat(std::string_view bytes, size_t at) {
    const uint32_t bits = ReadLe32(bytes, at);
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

void AppendLe32(std::string* bytes, uint32_t value) {
    for (int i = 0; i < 4; ++i)
        *bytes += static_cast<char>((value >> (8 * i)) & 0xff);
}

void AppendFloat(std::string* bytes, float value) {
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    AppendLe32(bytes, bits);
}

bool IsZlibStream(std::string_view bytes) {
    if (bytes.size() < 2)
        return false;
    const unsigned first = static_cast<unsigned char>(bytes[0]);
    const unsigned second = static_cast<unsigned char>(bytes[1]);
    return (first & 0x0f) == 8 && ((first << 8) | second) % 31 == 0;
}

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::string ScanText(size_t scan) {
    return "scan " + std::to_string(scan + 1);
}

bool Refuse(std::string* reason, std::string text) {
    if (reason != nullptr)
        *reason = std::move(text);
    return false;
}

// Expands a compressed file; the view then points into *storage.
bool Uncompressed(std::string_view* bytes, std::string* storage, size_t maxExpanded, std::string* reason) {
    if (!IsZlibStream(*bytes))
        return true;
    switch (ExpandBounded(*bytes, maxExpanded, storage)) {
    case ExpandOutcome::Expanded:
        *bytes = *storage;
        return true;
    case ExpandOutcome::TooLarge:
        return Refuse(reason, "the compressed file expands past " + std::to_string(maxExpanded) +
                                  " bytes, more than any data file");
    case ExpandOutcome::Damaged:
        break;
    }
    return Refuse(reason, "the compressed data is damaged or truncated");
}

struct Layout {
    uint32_t version = 0;
    uint32_t scans = 0;
    size_t tableAt = kHeaderSize;
    size_t pointsAt = kHeaderSize; // version 2
    uint64_t points = 0;           // version 2
    size_t end = kHeaderSize;      // where the scans end and the parameter block may begin
};

bool ReadLayout(std::string_view bytes, Layout* layout, std::string* reason) {
    if (bytes.size() < 4 || bytes.substr(0, 4) != kMagic)
        return Refuse(reason, "not a data file (it does not begin with VXS1)");
    if (bytes.size() < kHeaderSize)
        return Refuse(reason, "truncated: " + std::to_string(bytes.size()) + " bytes, shorter than the " +
                                  std::to_string(kHeaderSize) + "-byte header");
    layout->version = ReadLe32(bytes, 4);
    layout->scans = ReadLe32(bytes, 8);
    if (layout->version != 1 && layout->version != 2)
        return Refuse(reason, "version " + std::to_string(layout->version) +
                                  " is not supported (this program reads versions 1 and 2)");
    const uint64_t entry = layout->version == 1 ? kScanSize : kScanEntrySize;
    const uint64_t tableEnd = kHeaderSize + uint64_t{layout->scans} * entry;
    if (tableEnd > bytes.size())
        return Refuse(reason, "truncated: " + std::to_string(layout->scans) + " scans need " +
                                  std::to_string(tableEnd) + " bytes of scan table, the file has " +
                                  std::to_string(bytes.size()));
    layout->end = static_cast<size_t>(tableEnd);
    if (layout->version == 1)
        return true;
    layout->pointsAt = layout->end;
    for (uint32_t scan = 0; scan < layout->scans; ++scan) {
        const uint32_t count = ReadLe32(bytes, kHeaderSize + scan * kScanEntrySize + 4);
        if (count > kMaxPointsPerScan)
            return Refuse(reason, ScanText(scan) + ": " + std::to_string(count) + " points, more than " +
                                      std::to_string(kMaxPointsPerScan));
        layout->points += count;
    }
    const uint64_t pointsEnd = layout->pointsAt + layout->points * kPointSize;
    if (pointsEnd > bytes.size())
        return Refuse(reason, "truncated: the scans' " + std::to_string(layout->points) + " points need " +
                                  std::to_string(pointsEnd) + " bytes, the file has " +
                                  std::to_string(bytes.size()));
    layout->end = static_cast<size_t>(pointsEnd);
    return true;
}

bool ParseLines(std::string_view block, std::map<std::wstring, std::wstring>* parameters) {
    while (!block.empty()) {
        const size_t end = block.find('\n');
        std::string_view line = block.substr(0, end);
        block = end == std::string_view::npos ? std::string_view() : block.substr(end + 1);
        // "\r\n" line ends, and stray carriage returns before the end, belong to no value.
        while (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.empty())
            continue;
        const size_t equals = line.find('=');
        if (equals == std::string_view::npos || equals == 0)
            return false;
        (*parameters)[FromUtf8(line.substr(0, equals))] = FromUtf8(line.substr(equals + 1));
    }
    return true;
}

bool ReadParameterBlock(std::string_view rest, std::map<std::wstring, std::wstring>* parameters,
                        std::string* reason) {
    parameters->clear();
    if (rest.empty())
        return true;
    if (rest.size() < 8 || rest.substr(0, 4) != kParameterMagic)
        return Refuse(reason,
                      std::to_string(rest.size()) + " bytes after the scans are not a parameter block");
    const uint32_t length = ReadLe32(rest, 4);
    if (length > rest.size() - 8)
        return Refuse(reason, "truncated: the parameter block needs " + std::to_string(length) +
                                  " bytes, the file has " + std::to_string(rest.size() - 8));
    if (!ParseLines(rest.substr(8, length), parameters))
        return Refuse(reason, "the parameter block has a line that is not KEY=VALUE");
    return true;
}

bool ReadScans(std::string_view bytes, const Layout& layout, VexaRun* run, std::string* reason) {
    run->Reserve(layout.scans, static_cast<size_t>(layout.points));
    size_t pointAt = layout.pointsAt;
    uint32_t previousTime = 0;
    std::vector<float> mz;
    std::vector<float> intensity;
    for (uint32_t scan = 0; scan < layout.scans; ++scan) {
        const size_t entry = kHeaderSize + scan * kScanEntrySize;
        const uint32_t time = ReadLe32(bytes, entry);
        const uint32_t count = ReadLe32(bytes, entry + 4);
        const float total = ReadFloat(bytes, entry + 8);
        const uint32_t flags = ReadLe32(bytes, entry + 12);
        if (time < previousTime)
            return Refuse(reason, ScanText(scan) + ": retention time " + std::to_string(time) +
                                      " ms goes backwards (the scan before is at " +
                                      std::to_string(previousTime) + " ms)");
        previousTime = time;
        mz.resize(count);
        intensity.resize(count);
        double sum = 0;
        for (uint32_t point = 0; point < count; ++point, pointAt += kPointSize) {
            mz[point] = ReadFloat(bytes, pointAt);
            intensity[point] = ReadFloat(bytes, pointAt + 4);
            const auto where = [&] { return ScanText(scan) + ", point " + std::to_string(point + 1); };
            if (!(mz[point] >= kMinMass && mz[point] <= kMaxMass))
                return Refuse(reason, where() + ": m/z " + Number(mz[point]) + " is outside 1 to 2000");
            if (point > 0 && mz[point] <= mz[point - 1])
                return Refuse(reason, where() + ": m/z " + Number(mz[point]) + " does not ascend (after " +
                                          Number(mz[point - 1]) + ")");
            if (!std::isfinite(intensity[point]) || intensity[point] < 0)
                return Refuse(reason, where() + ": intensity " + Number(intensity[point]) +
                                          " is not a finite number of at least 0");
            sum += intensity[point];
        }
        if (!std::isfinite(total) ||
            std::abs(total - sum) > kTotalTolerance * std::max<double>(sum, std::abs(total)))
            return Refuse(reason, ScanText(scan) + ": total intensity " + Number(total) +
                                      " differs from its points' sum " + Number(sum) + " by more than 0.1 %");
        run->AddScan(time, total, flags, mz, intensity);
    }
    return true;
}

// One line per parameter. What would end the line, or split a key, is written as a blank, and a key
// that would be empty is left out: the block always reads back, and reads back the same again.
std::string OneLine(const std::wstring& text, bool isKey) {
    std::string line = ToUtf8(text);
    for (char& c : line)
        if (c == '\n' || c == '\r' || (isKey && c == '='))
            c = ' ';
    return line;
}

} // namespace

bool LooksLikeDataFile(std::string_view bytes) {
    return (bytes.size() >= kHeaderSize && bytes.substr(0, 4) == kMagic) || IsZlibStream(bytes);
}

bool ReadParameters(std::string_view bytes, std::map<std::wstring, std::wstring>* parameters) {
    parameters->clear();
    std::string expanded;
    Layout layout;
    return Uncompressed(&bytes, &expanded, kMaxExpandedSize, nullptr) &&
           ReadLayout(bytes, &layout, nullptr) &&
           ReadParameterBlock(bytes.substr(layout.end), parameters, nullptr);
}

std::string MakeParameterBlock(const std::map<std::wstring, std::wstring>& parameters) {
    std::string lines;
    for (const auto& [key, value] : parameters)
        if (!key.empty())
            lines += OneLine(key, true) + "=" + OneLine(value, false) + "\n";
    std::string block(kParameterMagic, 4);
    AppendLe32(&block, static_cast<uint32_t>(lines.size()));
    return block + lines;
}

bool ReadRun(std::string_view bytes, VexaRun* run, std::string* reason, size_t maxExpanded) {
    *run = VexaRun();
    std::string expanded;
    Layout layout;
    std::map<std::wstring, std::wstring> parameters;
    VexaRun read;
    if (!Uncompressed(&bytes, &expanded, maxExpanded, reason) || !ReadLayout(bytes, &layout, reason) ||
        !ReadParameterBlock(bytes.substr(layout.end), &parameters, reason))
        return false;
    read.SetVersion(layout.version);
    read.SetStartTime(ReadLe32(bytes, 12));
    const std::string_view name = bytes.substr(16, kSampleNameSize);
    read.SetSampleName(std::string(name.substr(0, name.find('\0'))));
    read.SetParameters(std::move(parameters));
    if (layout.version == 1)
        read.SetOpaqueScanCount(layout.scans);
    else if (!ReadScans(bytes, layout, &read, reason))
        return false;
    *run = std::move(read);
    return true;
}

bool LoadRun(const std::wstring& name, VexaRun* run, std::string* reason) {
    *run = VexaRun();
    std::string bytes;
    WholeFileError error;
    if (!ReadWholeFile(name, static_cast<int64_t>(kMaxExpandedSize), &bytes, &error)) {
        std::string text = "cannot read: error " + ToUtf8(DescribeError(error.number));
        if (!error.text.empty())
            text += " - " + ToUtf8(error.text);
        return Refuse(reason, text);
    }
    return ReadRun(bytes, run, reason);
}

std::string MakeFile(const VexaRun& run) {
    std::string bytes(kMagic, 4);
    AppendLe32(&bytes, run.Version());
    AppendLe32(&bytes, static_cast<uint32_t>(run.ScanCount()));
    AppendLe32(&bytes, run.StartTime());
    // At most 31 bytes, cut where no UTF-8 sequence breaks, so a NUL always ends the name.
    std::string name = run.SampleName().substr(0, kSampleNameSize - 1);
    while (name.size() < run.SampleName().size() && !name.empty() &&
           (static_cast<unsigned char>(run.SampleName()[name.size()]) & 0xC0) == 0x80)
        name.pop_back();
    name.resize(kSampleNameSize, '\0');
    bytes += name;
    if (run.HasSpectra()) {
        bytes.reserve(bytes.size() + run.ScanCount() * kScanEntrySize + run.TotalPoints() * kPointSize);
        for (size_t scan = 0; scan < run.ScanCount(); ++scan) {
            AppendLe32(&bytes, run.TimesMs()[scan]);
            AppendLe32(&bytes, static_cast<uint32_t>(run.PointCount(scan)));
            AppendFloat(&bytes, run.Tic()[scan]);
            AppendLe32(&bytes, run.Flags(scan));
        }
        for (size_t point = 0; point < run.TotalPoints(); ++point) {
            AppendFloat(&bytes, run.AllMasses()[point]);
            AppendFloat(&bytes, run.AllIntensities()[point]);
        }
    } else {
        bytes.append(run.ScanCount() * kScanSize, '\0');
    }
    if (!run.Parameters().empty())
        bytes += MakeParameterBlock(run.Parameters());
    return bytes;
}

} // namespace VexaDataFile
