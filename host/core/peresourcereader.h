// SPDX-License-Identifier: Apache-2.0
#pragma once
// Reads the resources of a Windows resource-only module (PE32 or PE32+) on any platform, without the
// system's loader. The whole file is held in memory and every offset, size and count taken from it is
// checked against the file before use, so a damaged or hostile module is an error, never a read outside
// the buffer.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

class PEResourceReader {
public:
    // Resource type numbers of the platform.
    static constexpr uint32_t kTypeString = 6;
    // Modules larger than this are refused rather than read into memory.
    static constexpr size_t kMaxFileSize = 64u << 20;

    // Reads and checks a module file. False with LastError() set when the file cannot be read or is
    // not a module with a sound resource directory.
    bool Open(const std::wstring& path);
    // The same from bytes already in memory (tests, fuzzing).
    bool OpenBytes(std::vector<uint8_t> bytes);

    // String `id` of the module's string table (first language found). Empty optional when the
    // string is absent; a present but empty string is an empty wstring.
    std::optional<std::wstring> LoadString(uint32_t id) const;
    // The bytes of the resource of a named type (compared without regard to case, as the platform's
    // lookup does) and numeric id; empty optional when there is none.
    std::optional<std::span<const uint8_t>> FindResource(const std::wstring& typeName, uint32_t id) const;
    // The same for a numeric type.
    std::optional<std::span<const uint8_t>> FindResource(uint32_t type, uint32_t id) const;

    // Why the last Open failed (or why the last look-up found a damaged directory), in words.
    const std::wstring& LastError() const { return m_lastError; }

private:
    struct Key {
        bool isName = false;
        uint32_t id = 0;
        std::wstring name;
    };
    bool Parse();
    bool Fail(const wchar_t* why);
    // Offset in the file of `size` bytes at relative virtual address `rva`; empty when outside.
    std::optional<size_t> RvaToOffset(uint32_t rva, uint32_t size) const;
    // The entry of the directory at `dirOffset` (relative to the resource section) matching `key`;
    // the value is the entry's raw OffsetToData field.
    std::optional<uint32_t> FindEntry(uint32_t dirOffset, const Key& key) const;
    std::optional<uint32_t> FirstEntry(uint32_t dirOffset) const;
    std::optional<std::wstring> EntryName(uint32_t nameField) const;
    std::optional<std::span<const uint8_t>> Find(const Key& type, uint32_t id) const;
    bool InResources(uint64_t offset, uint64_t size) const;

    std::vector<uint8_t> m_bytes;
    // File offset and size of the resource directory's bytes.
    size_t m_resOffset = 0;
    size_t m_resSize = 0;
    struct Section {
        uint32_t virtualAddress, virtualSize, rawOffset, rawSize;
    };
    std::vector<Section> m_sections;
    mutable std::wstring m_lastError;
};
