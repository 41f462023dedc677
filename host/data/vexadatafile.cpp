#include "vexadatafile.h"

#include "compression.h"
#include "text.h"

#include <cstring>
#include <vector>

namespace VexaDataFile {

namespace {

constexpr char kMagic[] = "VXS1";
constexpr char kParameterMagic[] = "PARM";
// A compressed file expands to at most this much; data files of the library's use are far smaller.
constexpr size_t kMaxExpandedSize = 64 * 1024 * 1024;

uint32_t ReadLe32(std::string_view bytes, size_t at) {
    uint32_t value = 0;
    for (int i = 3; i >= 0; --i)
        value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

bool IsZlibStream(std::string_view bytes) {
    if (bytes.size() < 2)
        return false;
    const unsigned first = static_cast<unsigned char>(bytes[0]);
    const unsigned second = static_cast<unsigned char>(bytes[1]);
    return (first & 0x0f) == 8 && ((first << 8) | second) % 31 == 0;
}

bool Expand(std::string_view bytes, std::string* expanded) {
    for (size_t room = std::max<size_t>(bytes.size() * 8, 4096); room <= kMaxExpandedSize; room *= 4) {
        std::vector<char> out(room);
        size_t size = room;
        if (UncompressBuffer(out.data(), &size, bytes.data(), bytes.size())) {
            expanded->assign(out.data(), size);
            return true;
        }
    }
    return false;
}

bool ParseLines(std::string_view block, std::map<std::wstring, std::wstring>* parameters) {
    while (!block.empty()) {
        const size_t end = block.find('\n');
        std::string_view line = block.substr(0, end);
        block = end == std::string_view::npos ? std::string_view() : block.substr(end + 1);
        if (!line.empty() && line.back() == '\r')
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

} // namespace

bool LooksLikeDataFile(std::string_view bytes) {
    return (bytes.size() >= kHeaderSize && bytes.substr(0, 4) == kMagic) || IsZlibStream(bytes);
}

bool ReadParameters(std::string_view bytes, std::map<std::wstring, std::wstring>* parameters) {
    parameters->clear();
    std::string expanded;
    if (IsZlibStream(bytes)) {
        if (!Expand(bytes, &expanded))
            return false;
        bytes = expanded;
    }
    if (bytes.size() < kHeaderSize || bytes.substr(0, 4) != kMagic)
        return false;
    const uint64_t scansEnd = kHeaderSize + uint64_t{ReadLe32(bytes, 8)} * kScanSize;
    if (scansEnd > bytes.size())
        return false;
    std::string_view rest = bytes.substr(static_cast<size_t>(scansEnd));
    if (rest.empty())
        return true;
    if (rest.size() < 8 || rest.substr(0, 4) != kParameterMagic)
        return false;
    const uint32_t length = ReadLe32(rest, 4);
    if (length > rest.size() - 8)
        return false;
    return ParseLines(rest.substr(8, length), parameters);
}

std::string MakeParameterBlock(const std::map<std::wstring, std::wstring>& parameters) {
    std::string lines;
    for (const auto& [key, value] : parameters)
        lines += ToUtf8(key) + "=" + ToUtf8(value) + "\n";
    std::string block(kParameterMagic, 4);
    for (int i = 0; i < 4; ++i)
        block += static_cast<char>((lines.size() >> (8 * i)) & 0xff);
    return block + lines;
}

} // namespace VexaDataFile
