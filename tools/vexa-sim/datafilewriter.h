// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's own writer of version-2 data files (48-byte header, scan table, points, parameter
// block). Written apart from the workstation's data library on purpose: a layout mistake must not hide
// by being made on both sides.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class DataFileWriter {
public:
    static constexpr std::uint32_t kSimFlag = 1;

    DataFileWriter(std::uint32_t startTime, const std::string& sampleName);

    // One scan: its masses and intensities (same length); the total is their sum.
    void AddScan(std::uint32_t timeMs, std::uint32_t flags, const std::vector<float>& masses,
                 const std::vector<float>& intensities);
    // KEY=VALUE lines of the parameter block, in this order.
    void AddParameter(const std::string& key, const std::string& value);

    std::vector<std::uint8_t> Bytes() const;

private:
    std::uint32_t m_startTime;
    std::string m_sampleName;
    std::vector<std::uint8_t> m_table;
    std::vector<std::uint8_t> m_points;
    std::uint32_t m_scans = 0;
    std::string m_parameters;
};
