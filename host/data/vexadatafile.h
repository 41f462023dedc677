// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's data files. A 48-byte header ("VXS1", u32 version, u32 scan count, u32 start time in
// seconds since 1970 UTC, char[32] UTF-8 sample name, NUL-padded), then the scans, then an optional
// parameter block ("PARM", a u32 length, that many bytes of UTF-8 "KEY=VALUE" lines). Version 1 holds
// 20 opaque bytes per scan; version 2 a scan table (u32 retention time in ms, u32 point count, f32
// total intensity, u32 flags) followed by every scan's points (f32 m/z, f32 intensity). Integers are
// little-endian. Compressed data files (.vxz, .vqz, .vqs) are the same bytes as one zlib stream.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

class VexaRun;

namespace VexaDataFile {

inline constexpr size_t kHeaderSize = 48;
inline constexpr size_t kSampleNameSize = 32;
inline constexpr size_t kScanSize = 20; // a version-1 scan
inline constexpr size_t kScanEntrySize = 16;
inline constexpr size_t kPointSize = 8;
inline constexpr uint32_t kMaxPointsPerScan = 65536;
inline constexpr float kMinMass = 1.0f;
inline constexpr float kMaxMass = 2000.0f;
// A scan's total intensity may differ from its points' sum by this fraction (float rounding).
inline constexpr double kTotalTolerance = 0.001;
// A compressed file expands to at most this much, and an uncompressed one is read only this far:
// about ten hours of full scans.
inline constexpr size_t kMaxExpandedSize = 256u * 1024 * 1024;

// Whether the bytes start as a data file or a zlib stream of one.
bool LooksLikeDataFile(std::string_view bytes);
// Reads the parameter block of a data file (expanding a compressed one first); false when the bytes
// are not a data file or its layout is damaged. A file without a block has no parameters.
bool ReadParameters(std::string_view bytes, std::map<std::wstring, std::wstring>* parameters);
// The bytes of a parameter block holding `parameters`, to append after the scans.
std::string MakeParameterBlock(const std::map<std::wstring, std::wstring>& parameters);

// Reads a whole data file, compressed or not, checking every count, time, mass and intensity. On
// refusal *run is left empty and *reason says what is wrong, in words for the user ("scan 12: ...",
// scans counted from 1). `maxExpanded` bounds what a compressed file may expand to.
bool ReadRun(std::string_view bytes, VexaRun* run, std::string* reason,
             size_t maxExpanded = kMaxExpandedSize);
// Reads a local or remote ("@HOST:PATH") file with ReadRun; a file that cannot be read gives its error
// number and meaning in *reason.
bool LoadRun(const std::wstring& name, VexaRun* run, std::string* reason);
// The file's bytes for `run` (its version: 1 writes opaque zero scans), uncompressed.
std::string MakeFile(const VexaRun& run);

} // namespace VexaDataFile
