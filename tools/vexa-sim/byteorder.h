// SPDX-License-Identifier: Apache-2.0
#pragma once
// Little-endian reads and writes, byte by byte, so the wire layout never depends on the build host.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace wire {

inline std::uint16_t GetU16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
}

inline std::uint32_t GetU32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
           (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

inline void PutU16(std::uint8_t* p, std::uint16_t value) {
    p[0] = static_cast<std::uint8_t>(value);
    p[1] = static_cast<std::uint8_t>(value >> 8);
}

inline void PutU32(std::uint8_t* p, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

inline void AppendU32(std::vector<std::uint8_t>& out, std::uint32_t value) {
    const std::size_t at = out.size();
    out.resize(at + 4);
    PutU32(out.data() + at, value);
}

} // namespace wire
