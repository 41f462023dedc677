// SPDX-License-Identifier: Apache-2.0
#include "datafilewriter.h"

#include <cstring>

#include "byteorder.h"

namespace {

constexpr std::size_t kHeaderSize = 48;
constexpr std::size_t kNameSize = 32;
constexpr std::uint32_t kVersion = 2;

void AppendFloat(std::vector<std::uint8_t>& out, float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    wire::AppendU32(out, bits);
}

} // namespace

DataFileWriter::DataFileWriter(std::uint32_t startTime, const std::string& sampleName)
    : m_startTime(startTime), m_sampleName(sampleName) {}

void DataFileWriter::AddScan(std::uint32_t timeMs, std::uint32_t flags, const std::vector<float>& masses,
                             const std::vector<float>& intensities) {
    double total = 0;
    for (std::size_t i = 0; i < masses.size(); ++i) {
        AppendFloat(m_points, masses[i]);
        AppendFloat(m_points, intensities[i]);
        total += intensities[i];
    }
    wire::AppendU32(m_table, timeMs);
    wire::AppendU32(m_table, static_cast<std::uint32_t>(masses.size()));
    AppendFloat(m_table, static_cast<float>(total));
    wire::AppendU32(m_table, flags);
    ++m_scans;
}

void DataFileWriter::AddParameter(const std::string& key, const std::string& value) {
    m_parameters += key + "=" + value + "\n";
}

std::vector<std::uint8_t> DataFileWriter::Bytes() const {
    std::vector<std::uint8_t> bytes(kHeaderSize, 0);
    std::memcpy(bytes.data(), "VXS1", 4);
    wire::PutU32(bytes.data() + 4, kVersion);
    wire::PutU32(bytes.data() + 8, m_scans);
    wire::PutU32(bytes.data() + 12, m_startTime);
    // The name keeps a NUL after it; a cut never splits a UTF-8 sequence.
    std::size_t length = std::min(m_sampleName.size(), kNameSize - 1);
    while (length > 0 && length < m_sampleName.size() &&
           (static_cast<unsigned char>(m_sampleName[length]) & 0xC0) == 0x80)
        --length;
    std::memcpy(bytes.data() + 16, m_sampleName.data(), length);
    bytes.insert(bytes.end(), m_table.begin(), m_table.end());
    bytes.insert(bytes.end(), m_points.begin(), m_points.end());
    if (!m_parameters.empty()) {
        bytes.insert(bytes.end(), {'P', 'A', 'R', 'M'});
        wire::AppendU32(bytes, static_cast<std::uint32_t>(m_parameters.size()));
        bytes.insert(bytes.end(), m_parameters.begin(), m_parameters.end());
    }
    return bytes;
}
