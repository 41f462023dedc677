// SPDX-License-Identifier: Apache-2.0
// The resource reader against real modules built by the MinGW binutils from fixtures/resources.rc, in
// both PE kinds, and against damaged copies of them. Under AddressSanitizer a read outside the buffer
// fails the damaged-file cases even when the reader's answer looks right.
#include "peresourcereader.h"
#include "resourcemodule.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <random>

namespace {

const std::string kFixtureDir = VEXA_RESOURCE_FIXTURE_DIR;

std::vector<uint8_t> ReadFixture(const std::string& name) {
    std::ifstream in(kFixtureDir + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string AsText(std::span<const uint8_t> bytes) {
    return {bytes.begin(), bytes.end()};
}

uint32_t Get32(const std::vector<uint8_t>& b, size_t at) {
    uint32_t v;
    std::memcpy(&v, b.data() + at, 4);
    return v;
}
void Put32(std::vector<uint8_t>& b, size_t at, uint32_t v) {
    std::memcpy(b.data() + at, &v, 4);
}
void Put16(std::vector<uint8_t>& b, size_t at, uint16_t v) {
    std::memcpy(b.data() + at, &v, 2);
}

// File offset of the ".rsrc" section's raw data, found through the section table by name.
size_t ResourceSectionOffset(const std::vector<uint8_t>& b) {
    const uint32_t pe = Get32(b, 0x3c);
    const uint16_t sections = uint16_t(b[pe + 6] | b[pe + 7] << 8);
    const uint16_t optional = uint16_t(b[pe + 20] | b[pe + 21] << 8);
    for (size_t i = 0, at = pe + 24 + optional; i < sections; ++i, at += 40)
        if (std::memcmp(b.data() + at, ".rsrc", 5) == 0)
            return Get32(b, at + 20);
    return 0;
}

class PEResourceReaderTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        m_bytes = ReadFixture(GetParam());
        if (!VEXA_RESOURCE_FIXTURES_BUILT)
            GTEST_SKIP() << "the MinGW binutils that build the fixtures are not installed";
        ASSERT_FALSE(m_bytes.empty()) << "fixture " << GetParam() << " is missing";
    }
    std::vector<uint8_t> m_bytes;
};

TEST_P(PEResourceReaderTest, ReadsStringsAcrossBlockBoundaries) {
    PEResourceReader reader;
    ASSERT_TRUE(reader.OpenBytes(m_bytes))
        << std::string(reader.LastError().begin(), reader.LastError().end());
    const std::pair<uint32_t, const wchar_t*> present[] = {
        {1, L"first"},
        {15, L"fifteen"},
        {16, L"sixteen"},
        {17, L"seventeen"},
        {999, L"Brisk"},
        {1000, L"2"},
        {1001, L"caf\u00e9 \u00b5g"},
    };
    for (const auto& [id, text] : present)
        EXPECT_EQ(reader.LoadString(id), std::optional<std::wstring>(text)) << "string " << id;
    for (uint32_t id : {0u, 2u, 14u, 18u, 31u, 32u, 998u, 1002u, 5000u, 0xffffu})
        EXPECT_FALSE(reader.LoadString(id)) << "string " << id;
}

TEST_P(PEResourceReaderTest, FindsCustomTypeWithoutRegardToCase) {
    PEResourceReader reader;
    ASSERT_TRUE(reader.OpenBytes(m_bytes));
    for (const wchar_t* type : {L"DefaultMethod", L"DEFAULTMETHOD", L"defaultmethod"}) {
        const auto one = reader.FindResource(type, 1001);
        ASSERT_TRUE(one);
        EXPECT_EQ(AsText(*one), "payload of method one\n");
    }
    const auto empty = reader.FindResource(L"DefaultMethod", 1002);
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->empty());
    EXPECT_FALSE(reader.FindResource(L"DefaultMethod", 1003)); // that id is of another type
    EXPECT_TRUE(reader.FindResource(L"OtherType", 1003));
    EXPECT_FALSE(reader.FindResource(L"DefaultMethods", 1001));
    EXPECT_FALSE(reader.FindResource(L"Default", 1001));
}

TEST_P(PEResourceReaderTest, PlatformCallsReadAsOnWindows) {
    const std::string path = kFixtureDir + "/" + GetParam();
    resmod::HMODULE module = resmod::LoadLibraryW(std::wstring(path.begin(), path.end()));
    ASSERT_NE(module, nullptr);
    wchar_t buffer[8];
    EXPECT_EQ(resmod::LoadStringW(module, 17, buffer, 8), 7); // "seventeen" cut to fit, terminated
    EXPECT_STREQ(buffer, L"sevente");
    EXPECT_EQ(resmod::LoadStringW(module, 18, buffer, 8), 0);
    EXPECT_EQ(resmod::GetLastError(), resmod::kErrResourceNameNotFound);
    resmod::HRSRC found = resmod::FindResourceW(module, 1001, L"DefaultMethod");
    ASSERT_NE(found, nullptr);
    ASSERT_EQ(resmod::SizeofResource(module, found), 22u);
    const auto* data = static_cast<const char*>(resmod::LockResource(resmod::LoadResource(module, found)));
    EXPECT_EQ(std::string(data, 22), "payload of method one\n");
    EXPECT_EQ(resmod::FindResourceW(module, 1009, L"DefaultMethod"), nullptr);
    resmod::FreeLibrary(module);
}

TEST_P(PEResourceReaderTest, EveryTruncationIsRejectedOrReadsWithinTheFile) {
    for (size_t length = 0; length < m_bytes.size(); ++length) {
        PEResourceReader reader;
        if (!reader.OpenBytes(std::vector<uint8_t>(m_bytes.begin(), m_bytes.begin() + long(length))))
            continue;
        // Accepted prefixes may still have lost their strings; whatever is read must come from inside.
        (void)reader.LoadString(17);
        (void)reader.FindResource(L"DefaultMethod", 1001);
    }
}

TEST_P(PEResourceReaderTest, HostileHeadersAndDirectoriesAreErrors) {
    const size_t rsrc = ResourceSectionOffset(m_bytes);
    ASSERT_NE(rsrc, 0u);
    struct Damage {
        const char* what;
        std::function<void(std::vector<uint8_t>&)> apply;
        bool opens; // the headers still check out; only look-ups must fail safely
    };
    const Damage damages[] = {
        {"no MZ", [](auto& b) { b[0] = 'X'; }, false},
        {"PE header past the end", [](auto& b) { Put32(b, 0x3c, 0xfffffff0u); }, false},
        {"section count huge", [](auto& b) { Put16(b, Get32(b, 0x3c) + 6, 0xffff); }, false},
        {"optional header size huge", [](auto& b) { Put16(b, Get32(b, 0x3c) + 20, 0xffff); }, false},
        {"root entry counts huge", [&](auto& b) { Put16(b, rsrc + 12, 0xffff), Put16(b, rsrc + 14, 0xffff); },
         true},
        {"type directory points at the root",
         [&](auto& b) {
             for (size_t i = 0; i < 4; ++i)
                 Put32(b, rsrc + 16 + i * 8 + 4, 0x80000000u);
         },
         true},
        {"entries point past the section",
         [&](auto& b) {
             for (size_t i = 0; i < 4; ++i)
                 Put32(b, rsrc + 16 + i * 8 + 4, 0xfffffff0u);
         },
         true},
    };
    for (const Damage& damage : damages) {
        std::vector<uint8_t> bytes = m_bytes;
        damage.apply(bytes);
        PEResourceReader reader;
        const bool opened = reader.OpenBytes(bytes);
        EXPECT_EQ(opened, damage.opens) << damage.what;
        if (opened) {
            EXPECT_FALSE(reader.LoadString(17) && reader.FindResource(L"DefaultMethod", 1001)) << damage.what;
        } else {
            EXPECT_FALSE(reader.LastError().empty()) << damage.what;
        }
    }
}

TEST_P(PEResourceReaderTest, DataEntriesWithHostileSizesAreSkipped) {
    // The method's data entry (the one whose size is the payload's) gets a size near 2^32, then 2^31.
    const size_t rsrc = ResourceSectionOffset(m_bytes);
    PEResourceReader good;
    ASSERT_TRUE(good.OpenBytes(m_bytes));
    const auto payload = good.FindResource(L"DefaultMethod", 1001);
    ASSERT_TRUE(payload);
    for (uint32_t value : {0xfffffff0u, 0x7fffffffu}) {
        // Find the data entry whose size field equals the payload's size and corrupt it.
        std::vector<uint8_t> bytes = m_bytes;
        for (size_t at = rsrc; at + 8 <= bytes.size(); at += 4) {
            if (Get32(bytes, at + 4) == payload->size() && Get32(bytes, at) != 0)
                Put32(bytes, at + 4, value);
        }
        PEResourceReader reader;
        ASSERT_TRUE(reader.OpenBytes(bytes));
        EXPECT_FALSE(reader.FindResource(L"DefaultMethod", 1001));
    }
}

TEST_P(PEResourceReaderTest, RandomByteDamageNeverReadsOutside) {
    std::mt19937 random(20261123);
    for (int round = 0; round < 3000; ++round) {
        std::vector<uint8_t> bytes = m_bytes;
        for (int flips = 1 + int(random() % 8); flips > 0; --flips)
            bytes[random() % bytes.size()] = uint8_t(random());
        PEResourceReader reader;
        if (reader.OpenBytes(std::move(bytes))) {
            for (uint32_t id : {1u, 16u, 1000u, 1001u})
                (void)reader.LoadString(id);
            (void)reader.FindResource(L"DefaultMethod", 1001);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(BothKinds, PEResourceReaderTest,
                         testing::Values("resources64.ddll", "resources32.ddll"), [](const auto& info) {
                             return std::string(info.param).substr(9, 2) == "64" ? "PE32Plus" : "PE32";
                         });

TEST(PEResourceReader, MissingOrEmptyFilesAreErrors) {
    PEResourceReader reader;
    EXPECT_FALSE(reader.Open(L"/nonexistent/folder/none.ddll"));
    EXPECT_FALSE(reader.OpenBytes({}));
    EXPECT_FALSE(reader.LoadString(1));
    EXPECT_EQ(resmod::LoadLibraryW(L"/nonexistent/none.ddll"), nullptr);
    EXPECT_EQ(resmod::GetLastError(), resmod::kErrFileNotFound);
    EXPECT_NE(resmod::GetErrorMessage(resmod::kErrBadExeFormat).find(L"193"), std::wstring::npos);
}

} // namespace
