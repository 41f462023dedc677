// SPDX-License-Identifier: Apache-2.0
#include "peresourcereader.h"

#include "paths.h"
#include "text.h"

#include <fstream>

namespace {

// Little-endian reads; callers have checked the range.
uint16_t Read16(const uint8_t* p) {
    return uint16_t(p[0] | (p[1] << 8));
}
uint32_t Read32(const uint8_t* p) {
    return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}

constexpr uint32_t kHighBit = 0x80000000u;
constexpr size_t kDirectoryHeader = 16;
constexpr size_t kDirectoryEntry = 8;
constexpr size_t kSectionHeader = 40;
constexpr uint16_t kMagicPE32 = 0x10b;
constexpr uint16_t kMagicPE32Plus = 0x20b;
constexpr uint32_t kResourceDirectoryIndex = 2;

} // namespace

bool PEResourceReader::Open(const std::wstring& path) {
    m_bytes.clear();
    std::ifstream in(NativePath(path), std::ios::binary | std::ios::ate);
    if (!in)
        return Fail(L"cannot be opened");
    const std::streamoff size = in.tellg();
    if (size < 0 || uint64_t(size) > kMaxFileSize)
        return Fail(L"is too large to be a resource module");
    std::vector<uint8_t> bytes(static_cast<size_t>(size));
    in.seekg(0);
    if (!in.read(reinterpret_cast<char*>(bytes.data()), size))
        return Fail(L"cannot be read");
    return OpenBytes(std::move(bytes));
}

bool PEResourceReader::OpenBytes(std::vector<uint8_t> bytes) {
    m_bytes = std::move(bytes);
    m_sections.clear();
    m_resOffset = m_resSize = 0;
    m_lastError.clear();
    if (!Parse()) {
        m_bytes.clear();
        m_sections.clear();
        return false;
    }
    return true;
}

bool PEResourceReader::Fail(const wchar_t* why) {
    m_lastError = why;
    return false;
}

bool PEResourceReader::Parse() {
    const size_t size = m_bytes.size();
    const uint8_t* b = m_bytes.data();
    if (size < 0x40 || b[0] != 'M' || b[1] != 'Z')
        return Fail(L"is not a Windows module (no MZ header)");
    const uint64_t pe = Read32(b + 0x3c);
    if (pe + 24 > size || Read32(b + pe) != 0x00004550u)
        return Fail(L"is not a Windows module (no PE signature)");
    const uint16_t sectionCount = Read16(b + pe + 6);
    const uint16_t optionalSize = Read16(b + pe + 20);
    const uint64_t optional = pe + 24;
    if (optional + optionalSize > size || optionalSize < 2)
        return Fail(L"has a truncated optional header");
    const uint16_t magic = Read16(b + optional);
    uint64_t countField, directories;
    if (magic == kMagicPE32) {
        countField = 92;
        directories = 96;
    } else if (magic == kMagicPE32Plus) {
        countField = 108;
        directories = 112;
    } else {
        return Fail(L"has an unknown optional header kind");
    }
    if (countField + 4 > optionalSize)
        return Fail(L"has a truncated optional header");
    const uint32_t directoryCount = Read32(b + optional + countField);
    const uint64_t resourceEntry = directories + kResourceDirectoryIndex * 8;
    if (directoryCount <= kResourceDirectoryIndex || resourceEntry + 8 > optionalSize)
        return Fail(L"has no resources");
    const uint32_t resourceRva = Read32(b + optional + resourceEntry);
    const uint32_t resourceSize = Read32(b + optional + resourceEntry + 4);

    const uint64_t sections = optional + optionalSize;
    if (sections + uint64_t(sectionCount) * kSectionHeader > size)
        return Fail(L"has a truncated section table");
    for (uint16_t i = 0; i < sectionCount; ++i) {
        const uint8_t* s = b + sections + size_t(i) * kSectionHeader;
        m_sections.push_back({Read32(s + 12), Read32(s + 8), Read32(s + 20), Read32(s + 16)});
    }
    if (resourceRva == 0 || resourceSize < kDirectoryHeader)
        return Fail(L"has no resources");
    const auto offset = RvaToOffset(resourceRva, resourceSize);
    if (!offset)
        return Fail(L"has a resource directory outside the file");
    m_resOffset = *offset;
    m_resSize = resourceSize;
    return true;
}

std::optional<size_t> PEResourceReader::RvaToOffset(uint32_t rva, uint32_t size) const {
    for (const Section& s : m_sections) {
        // Only bytes that are really in the file count: a section's virtual tail is zero-filled memory
        // in a loaded module, which a resource never legitimately points into.
        if (rva < s.virtualAddress)
            continue;
        const uint64_t into = uint64_t(rva) - s.virtualAddress;
        if (into + size > s.rawSize)
            continue;
        const uint64_t offset = uint64_t(s.rawOffset) + into;
        if (offset + size > m_bytes.size())
            return std::nullopt;
        return size_t(offset);
    }
    return std::nullopt;
}

bool PEResourceReader::InResources(uint64_t offset, uint64_t size) const {
    return offset <= m_resSize && size <= m_resSize - offset;
}

std::optional<std::wstring> PEResourceReader::EntryName(uint32_t nameField) const {
    const uint64_t at = nameField & ~kHighBit;
    if (!InResources(at, 2))
        return std::nullopt;
    const uint8_t* p = m_bytes.data() + m_resOffset + at;
    const uint16_t length = Read16(p);
    if (!InResources(at + 2, uint64_t(length) * 2))
        return std::nullopt;
    std::u16string units(length, u'\0');
    for (uint16_t i = 0; i < length; ++i)
        units[i] = char16_t(Read16(p + 2 + size_t(i) * 2));
    return FromUtf16(units);
}

std::optional<uint32_t> PEResourceReader::FindEntry(uint32_t dirOffset, const Key& key) const {
    if (!InResources(dirOffset, kDirectoryHeader))
        return std::nullopt;
    const uint8_t* dir = m_bytes.data() + m_resOffset + dirOffset;
    const uint32_t named = Read16(dir + 12);
    const uint32_t ids = Read16(dir + 14);
    if (!InResources(uint64_t(dirOffset) + kDirectoryHeader, uint64_t(named + ids) * kDirectoryEntry))
        return std::nullopt;
    for (uint32_t i = 0; i < named + ids; ++i) {
        const uint8_t* entry = dir + kDirectoryHeader + size_t(i) * kDirectoryEntry;
        const uint32_t nameField = Read32(entry);
        const bool isName = (nameField & kHighBit) != 0;
        if (isName != key.isName)
            continue;
        if (!isName && nameField == key.id)
            return Read32(entry + 4);
        if (isName) {
            const auto name = EntryName(nameField);
            if (name && EqualsNoCase(*name, key.name))
                return Read32(entry + 4);
        }
    }
    return std::nullopt;
}

std::optional<uint32_t> PEResourceReader::FirstEntry(uint32_t dirOffset) const {
    if (!InResources(dirOffset, kDirectoryHeader + kDirectoryEntry))
        return std::nullopt;
    const uint8_t* dir = m_bytes.data() + m_resOffset + dirOffset;
    if (Read16(dir + 12) + Read16(dir + 14) == 0)
        return std::nullopt;
    return Read32(dir + kDirectoryHeader + 4);
}

std::optional<std::span<const uint8_t>> PEResourceReader::Find(const Key& type, uint32_t id) const {
    if (m_bytes.empty())
        return std::nullopt;
    // Three levels: type, then name, then language. Each step must lead to a subdirectory except the
    // last, which must lead to a data entry; a directory that points back at itself is therefore
    // rejected at the next level instead of walked for ever.
    const auto names = FindEntry(0, type);
    if (!names || !(*names & kHighBit))
        return std::nullopt;
    const auto languages = FindEntry(*names & ~kHighBit, Key{false, id, {}});
    if (!languages || !(*languages & kHighBit))
        return std::nullopt;
    const auto data = FirstEntry(*languages & ~kHighBit);
    if (!data || (*data & kHighBit) || !InResources(*data, 16))
        return std::nullopt;
    const uint8_t* entry = m_bytes.data() + m_resOffset + *data;
    const uint32_t rva = Read32(entry);
    const uint32_t size = Read32(entry + 4);
    if (size == 0)
        return std::span<const uint8_t>();
    const auto offset = RvaToOffset(rva, size);
    if (!offset) {
        m_lastError = L"has a resource outside the file";
        return std::nullopt;
    }
    return std::span<const uint8_t>(m_bytes.data() + *offset, size);
}

std::optional<std::span<const uint8_t>> PEResourceReader::FindResource(const std::wstring& typeName,
                                                                       uint32_t id) const {
    return Find(Key{true, 0, typeName}, id);
}

std::optional<std::span<const uint8_t>> PEResourceReader::FindResource(uint32_t type, uint32_t id) const {
    return Find(Key{false, type, {}}, id);
}

std::optional<std::wstring> PEResourceReader::LoadString(uint32_t id) const {
    // Strings are stored in blocks of sixteen, block n holding ids 16(n-1) .. 16(n-1)+15, each string a
    // 16-bit length followed by that many UTF-16 units.
    const auto block = FindResource(kTypeString, id / 16 + 1);
    if (!block)
        return std::nullopt;
    size_t at = 0;
    for (uint32_t index = 0; index < 16; ++index) {
        if (at + 2 > block->size())
            return std::nullopt;
        const size_t length = Read16(block->data() + at);
        at += 2;
        if (length * 2 > block->size() - at)
            return std::nullopt;
        if (index == id % 16) {
            if (length == 0)
                return std::nullopt;
            std::u16string units(length, u'\0');
            for (size_t i = 0; i < length; ++i)
                units[i] = char16_t(Read16(block->data() + at + i * 2));
            return FromUtf16(units);
        }
        at += length * 2;
    }
    return std::nullopt;
}
