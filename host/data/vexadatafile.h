#pragma once
// The layout of the instrument's data files, as far as the data library reads them: a 48-byte header
// ("VXS1", version, scan count, start time, sample name), the scans (20 bytes each), then an optional
// parameter block ("PARM", a 32-bit little-endian length, that many bytes of UTF-8 "KEY=VALUE" lines).
// Compressed data files (.vxz, .vqz) are the same bytes as one zlib stream.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace VexaDataFile {

inline constexpr size_t kHeaderSize = 48;
inline constexpr size_t kScanSize = 20;

// Whether the bytes start as a data file or a zlib stream of one.
bool LooksLikeDataFile(std::string_view bytes);
// Reads the parameter block of a data file (expanding a compressed one first); false when the bytes
// are not a data file or the block is damaged. A file without a block has no parameters.
bool ReadParameters(std::string_view bytes, std::map<std::wstring, std::wstring>* parameters);
// The bytes of a parameter block holding `parameters`, to append after the scans.
std::string MakeParameterBlock(const std::map<std::wstring, std::wstring>& parameters);

} // namespace VexaDataFile
