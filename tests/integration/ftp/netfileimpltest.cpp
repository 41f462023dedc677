// SPDX-License-Identifier: Apache-2.0
// The FTP back end against a real FTP server (pyftpdlib) on a loopback address.
#include "netfileimpl.h"
#include "ftperror.h"
#include "ftpserverprocess.h"
#include "ftpsession.h"
#include "loopback.h"
#include "tempdir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>

namespace {

using Clock = std::chrono::steady_clock;

// libcurl hands over at most this much at once; the buffer may exceed its size by one such chunk.
constexpr std::size_t kCurlChunk = 16 * 1024;

// Text lines with LF endings only, as the instrument's text files are.
std::string TextLines(std::size_t size) {
    std::string text;
    for (int line = 0; text.size() < size; ++line)
        text += "line " + std::to_string(line) + " of the method log\n";
    text.resize(size);
    if (!text.empty())
        text.back() = '\n';
    return text;
}

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

class FtpTest : public ::testing::Test {
protected:
    void SetUp() override {
        // The back end honours the platform's proxy settings; the tests talk to loopback directly.
        for (const char* name : {"ftp_proxy", "FTP_PROXY", "all_proxy", "ALL_PROXY"})
            unsetenv(name);
        std::string whyNot;
        bool skippable = false;
        if (!m_server.Start(m_home.path(), ServerUser(), &whyNot, &skippable)) {
            if (skippable)
                GTEST_SKIP() << "no FTP server for this test: " << whyNot;
            FAIL() << whyNot;
        }
        m_home.createDir("Data");
    }
    void TearDown() override { SetFtpStallTimeout(std::chrono::seconds(30)); }
    virtual std::string ServerUser() const { return "qord"; }

    std::wstring host() const { return m_server.host(); }
    std::unique_ptr<NETFileImpl> Open(const std::wstring& folder, const std::wstring& name,
                                      const wchar_t* mode) {
        return std::make_unique<NETFileImpl>(host(), folder, name, mode);
    }

    // Writes `content` in blocks the way the copy worker does; true when the server confirmed it.
    bool Upload(const std::wstring& folder, const std::wstring& name, const wchar_t* mode,
                const std::string& content) {
        auto file = Open(folder, name, mode);
        EXPECT_EQ(file->GetError(), 0)
            << std::string(file->GetErrorText().begin(), file->GetErrorText().end());
        for (std::size_t offset = 0; offset < content.size(); offset += 16384) {
            const int block = static_cast<int>(std::min<std::size_t>(16384, content.size() - offset));
            if (file->Write(content.data() + offset, block) != block)
                return false;
        }
        return file->Close();
    }

    std::string Download(const std::wstring& folder, const std::wstring& name, const wchar_t* mode,
                         int* length = nullptr) {
        auto file = Open(folder, name, mode);
        EXPECT_EQ(file->GetError(), 0);
        if (length)
            *length = file->GetLength();
        std::string content;
        char block[16384];
        for (int got; (got = file->Read(block, sizeof block)) > 0;)
            content.append(block, static_cast<std::size_t>(got));
        EXPECT_EQ(file->GetError(), 0);
        return content;
    }

    TempDir m_home;
    FtpServerProcess m_server;
};

TEST_F(FtpTest, FilesRoundTripThroughTheServer) {
    struct Case {
        std::wstring folder;
        std::wstring name;
        std::string storedAs; // relative to the server's home
        std::size_t size;
        bool text;
    };
    m_home.createDir("Run data");
    const Case cases[] = {
        {L"/Data", L"empty.bin", "Data/empty.bin", 0, false},
        {L"/Data", L"one.bin", "Data/one.bin", 1, false},
        {L"/Data", L"large.bin", "Data/large.bin", 3 * 1024 * 1024 + 17, false},
        {L"/Data", L"empty.txt", "Data/empty.txt", 0, true},
        {L"/Data", L"one.txt", "Data/one.txt", 1, true},
        {L"/Data", L"large.txt", "Data/large.txt", 3 * 1024 * 1024 + 5, true},
        {L"", L"home.bin", "home.bin", 1000, false},
        {L"/", L"root.bin", "root.bin", 1000, false},
        {L"/Run data", L"a b#1%.vxs", "Run data/a b#1%.vxs", 5000, false},
        {L"/Run data", L"M\u00e9thode \u6e2c.mth", "Run data/M\xc3\xa9thode \xe6\xb8\xac.mth", 100, true},
    };
    unsigned seed = 1;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.storedAs);
        const std::string content = c.text ? TextLines(c.size) : RandomBytes(c.size, seed++);
        ASSERT_TRUE(Upload(c.folder, c.name, c.text ? L"wt" : L"wb", content));
        EXPECT_EQ(ReadWholeFile(m_home.file(c.storedAs)), content);
        int length = 0;
        EXPECT_EQ(Download(c.folder, c.name, c.text ? L"rt" : L"rb", &length), content);
        EXPECT_EQ(length, static_cast<int>(c.size));
    }
}

TEST_F(FtpTest, TextModeUsesAsciiTransfers) {
    // The server turns line ends into CRLF on the wire in ASCII type; the client turns them back, so
    // only a binary read shows what an ASCII one would have carried if it were binary.
    m_home.createFile("Data/crlf.txt", "a\r\nb\r\n");
    EXPECT_EQ(Download(L"/Data", L"crlf.txt", L"rb"), "a\r\nb\r\n");
    EXPECT_EQ(Download(L"/Data", L"crlf.txt", L"rt"), "a\nb\n");
}

TEST_F(FtpTest, AFileTheServerCannotFindHasNoLengthAndCannotBeRead) {
    struct Case {
        const char* what;
        std::wstring folder;
        std::wstring name;
    };
    const Case cases[] = {
        {"missing file", L"/Data", L"nothere.vxs"},
        {"missing folder", L"/NoSuchFolder", L"run.vxs"},
        {"folder as a file", L"/", L"Data"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        auto file = Open(c.folder, c.name, L"rb");
        EXPECT_EQ(file->GetLength(), -1);
        EXPECT_EQ(file->GetError(), 550);
        EXPECT_FALSE(file->GetErrorText().empty());
        char block[10];
        EXPECT_EQ(file->Read(block, sizeof block), 0);
        EXPECT_EQ(file->GetError(), 9);
        std::wstring line = L"untouched";
        EXPECT_FALSE(file->ReadString(line));
        EXPECT_EQ(line, L"untouched");
    }
}

TEST_F(FtpTest, WritingReplacesAnExistingFile) {
    m_home.createFile("Data/method.mth", std::string(100000, 'o'));
    ASSERT_TRUE(Upload(L"/Data", L"method.mth", L"wb", "new"));
    EXPECT_EQ(ReadWholeFile(m_home.file("Data/method.mth")), "new");
}

TEST_F(FtpTest, PendingTextIsWrittenAtTheNextWriteOrAtClose) {
    {
        auto file = Open(L"/Data", L"close.txt", L"wt");
        EXPECT_EQ(file->WriteString(L"abc"), 3);
        EXPECT_EQ(ReadWholeFile(m_home.file("Data/close.txt")), ""); // nothing sent before the close
    }
    EXPECT_EQ(ReadWholeFile(m_home.file("Data/close.txt")), "abc");
    {
        auto file = Open(L"/Data", L"order.txt", L"wb");
        EXPECT_EQ(file->WriteString(L"\u00e9t\u00e9 "), 4); // characters, not UTF-8 bytes
        EXPECT_EQ(file->Write("data", 4), 4);
        EXPECT_EQ(file->WriteString(L"!"), 1);
        EXPECT_EQ(file->Write("", 0), 0); // a zero count still writes out the pending text
        EXPECT_TRUE(file->Close());
    }
    EXPECT_EQ(ReadWholeFile(m_home.file("Data/order.txt")), "\xc3\xa9t\xc3\xa9 data!");
}

TEST_F(FtpTest, ReadStringSplitsLinesAndDropsCarriageReturns) {
    m_home.createFile("Data/lines.txt", "first\r\n\nthird \xc3\xa9\nlast");
    auto file = Open(L"/Data", L"lines.txt", L"rb");
    std::wstring line;
    const wchar_t* expected[] = {L"first", L"", L"third \u00e9", L"last"};
    for (const wchar_t* text : expected) {
        ASSERT_TRUE(file->ReadString(line));
        EXPECT_EQ(line, text);
    }
    EXPECT_FALSE(file->ReadString(line));
    EXPECT_EQ(line, L"");
}

TEST_F(FtpTest, BadArgumentsAndClosedFilesGiveTheirErrors) {
    m_home.createFile("Data/some.bin", "0123456789");
    char block[8];
    auto reading = Open(L"/Data", L"some.bin", L"rb");
    auto writing = Open(L"/Data", L"other.bin", L"wb");
    auto failed = Open(L"/NoSuchFolder", L"x.bin", L"wb");
    EXPECT_EQ(failed->GetError(), 550);
    // Each call and the error it must leave, checked one after the other.
    struct Case {
        const char* what;
        std::function<int()> call;
        int expectedResult;
        NETFileImpl* file;
        int expectedError;
    };
    const Case cases[] = {
        {"Read(null, 5)", [&] { return reading->Read(nullptr, 5); }, -1, reading.get(), 22},
        {"Read(buf, -1)", [&] { return reading->Read(block, -1); }, -1, reading.get(), 22},
        {"Write(null, 5)", [&] { return writing->Write(nullptr, 5); }, 0, writing.get(), 22},
        {"Write(buf, -1)", [&] { return writing->Write(block, -1); }, 0, writing.get(), 22},
        {"Read on a write file", [&] { return writing->Read(block, 5); }, -1, writing.get(), 9},
        {"Write on a read file", [&] { return reading->Write(block, 5); }, -1, reading.get(), 9},
        {"Write, no file", [&] { return failed->Write(block, 5); }, 0, failed.get(), 9},
        {"Read, no file", [&] { return failed->Read(block, 5); }, 0, failed.get(), 9},
        {"Tell", [&] { return reading->Tell(); }, -1, reading.get(), 9},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.call(), c.expectedResult) << c.what;
        EXPECT_EQ(c.file->GetError(), c.expectedError) << c.what;
    }
    EXPECT_EQ(reading->GetLength(), 10);
    EXPECT_STREQ(reading->TransportName(), L"FTP");
    EXPECT_EQ(reading->Read(block, 8), 8); // the earlier refusals did not disturb the transfer
    EXPECT_TRUE(writing->Close());
    EXPECT_FALSE(writing->Close());
}

TEST_F(FtpTest, MemoryStaysBoundedWhateverTheFileSize) {
    const std::string content = RandomBytes(24 * 1024 * 1024, 7);
    {
        auto file = Open(L"/Data", L"big.bin", L"wb");
        // One call with the whole file: the back end must not take it all into memory.
        EXPECT_EQ(file->Write(content.data(), static_cast<int>(content.size())),
                  static_cast<int>(content.size()));
        EXPECT_TRUE(file->Close());
        EXPECT_LE(file->PeakBuffered(), NETFileImpl::kBufferSize);
    }
    EXPECT_EQ(std::filesystem::file_size(m_home.file("Data/big.bin")), content.size());
    auto file = Open(L"/Data", L"big.bin", L"rb");
    std::string back;
    char block[4096];
    for (int got; (got = file->Read(block, sizeof block)) > 0;)
        back.append(block, static_cast<std::size_t>(got));
    EXPECT_TRUE(back == content);
    EXPECT_LE(file->PeakBuffered(), NETFileImpl::kBufferSize + kCurlChunk);
}

TEST_F(FtpTest, ClosingAPartlyReadFileIsQuickAndLeavesTheServerUsable) {
    const std::string content = RandomBytes(32 * 1024 * 1024, 5);
    m_home.createFile("Data/long.bin", content);
    for (int round = 0; round < 3; ++round) {
        auto file = Open(L"/Data", L"long.bin", L"rb");
        char block[65536];
        ASSERT_EQ(file->Read(block, sizeof block), static_cast<int>(sizeof block));
        EXPECT_EQ(std::string(block, sizeof block), content.substr(0, sizeof block));
        const auto start = Clock::now();
        EXPECT_TRUE(file->Close());
        EXPECT_LT(SecondsSince(start), 5.0);
        EXPECT_EQ(file->Read(block, 1), 0);
        EXPECT_EQ(file->GetError(), 9);
    }
    EXPECT_EQ(Download(L"/Data", L"long.bin", L"rb").size(), content.size());
}

TEST_F(FtpTest, AServerThatDiesMidTransferFailsTheReadQuickly) {
    m_home.createFile("Data/huge.bin", RandomBytes(64 * 1024 * 1024, 3));
    auto file = Open(L"/Data", L"huge.bin", L"rb");
    std::vector<char> block(1024 * 1024);
    ASSERT_EQ(file->Read(block.data(), static_cast<int>(block.size())), static_cast<int>(block.size()));
    m_server.Kill();
    const auto start = Clock::now();
    long long total = 0;
    int got = 0;
    for (int reads = 0; reads < 100 && (got = file->Read(block.data(), static_cast<int>(block.size()))) > 0;
         ++reads)
        total += got;
    EXPECT_EQ(got, -1);
    EXPECT_LT(total, 63LL * 1024 * 1024);
    EXPECT_NE(file->GetError(), 0);
    EXPECT_FALSE(file->GetErrorText().empty());
    EXPECT_LT(SecondsSince(start), 20.0);
}

TEST_F(FtpTest, AServerThatStopsAnsweringTimesOut) {
    SetFtpStallTimeout(std::chrono::milliseconds(1500));
    m_home.createFile("Data/huge.bin", RandomBytes(64 * 1024 * 1024, 4));
    {
        auto file = Open(L"/Data", L"huge.bin", L"rb");
        std::vector<char> block(1024 * 1024);
        ASSERT_EQ(file->Read(block.data(), static_cast<int>(block.size())), static_cast<int>(block.size()));
        m_server.Freeze();
        const auto start = Clock::now();
        int got = 0;
        for (int reads = 0;
             reads < 100 && (got = file->Read(block.data(), static_cast<int>(block.size()))) > 0;)
            ++reads;
        EXPECT_EQ(got, -1);
        EXPECT_EQ(file->GetError(), kFtpErrTimedOut);
        EXPECT_LT(SecondsSince(start), 15.0);
        m_server.Thaw();
    }
    auto file = Open(L"/Data", L"upload.bin", L"wb");
    ASSERT_EQ(file->GetError(), 0);
    m_server.Freeze();
    const std::string block(1024 * 1024, 'u');
    const auto start = Clock::now();
    bool failed = false;
    for (int blocks = 0; blocks < 256 && !failed; ++blocks)
        failed = file->Write(block.data(), static_cast<int>(block.size())) != static_cast<int>(block.size());
    if (!failed)
        failed = !file->Close();
    EXPECT_TRUE(failed);
    EXPECT_EQ(file->GetError(), kFtpErrTimedOut);
    EXPECT_LT(SecondsSince(start), 15.0);
}

TEST_F(FtpTest, RenameAndDeleteWorkOnTheServer) {
    ASSERT_TRUE(Upload(L"/Data", L"___temp@@run 1.vxs", L"wb", "payload"));
    int error = -1;
    std::wstring text = L"x";
    EXPECT_TRUE(FtpRename(host(), L"/Data", L"___temp@@run 1.vxs", L"run 1.vxs", &error, &text));
    EXPECT_EQ(error, 0);
    EXPECT_EQ(text, L"");
    EXPECT_FALSE(FileExists(m_home.file("Data/___temp@@run 1.vxs")));
    EXPECT_EQ(ReadWholeFile(m_home.file("Data/run 1.vxs")), "payload");
    EXPECT_TRUE(FtpDelete(host(), L"/Data", L"run 1.vxs", &error, nullptr));
    EXPECT_FALSE(FileExists(m_home.file("Data/run 1.vxs")));

    struct Case {
        const char* what;
        std::function<bool(int*, std::wstring*)> call;
        int expectedError;
    };
    const std::wstring server = host();
    const Case cases[] = {
        {"rename a missing file",
         [&](int* e, std::wstring* t) { return FtpRename(server, L"/Data", L"gone", L"new", e, t); }, 550},
        {"delete a missing file",
         [&](int* e, std::wstring* t) { return FtpDelete(server, L"/Data", L"gone", e, t); }, 550},
        {"missing folder",
         [&](int* e, std::wstring* t) { return FtpDelete(server, L"/NoSuchFolder", L"x", e, t); }, 550},
        {"line break in a name",
         [&](int* e, std::wstring* t) { return FtpDelete(server, L"/Data", L"x\r\nDELE y", e, t); }, 22},
        {"empty name", [&](int* e, std::wstring* t) { return FtpRename(server, L"/Data", L"", L"y", e, t); },
         22},
    };
    for (const Case& c : cases) {
        error = -1;
        text.clear();
        EXPECT_FALSE(c.call(&error, &text)) << c.what;
        EXPECT_EQ(error, c.expectedError) << c.what;
        EXPECT_FALSE(text.empty()) << c.what;
    }
}

class FtpRefusingServerTest : public FtpTest {
protected:
    std::string ServerUser() const override { return "someoneelse"; }
};

TEST_F(FtpRefusingServerTest, ARefusedLoginGivesTheServersReplyQuickly) {
    for (const wchar_t* mode : {L"rb", L"wb"}) {
        const auto start = Clock::now();
        auto file = Open(L"/Data", L"run.vxs", mode);
        EXPECT_EQ(file->GetError(), 530);
        EXPECT_NE(file->GetErrorText().find(L"PASS"), std::wstring::npos);
        EXPECT_EQ(file->GetLength(), -1);
        EXPECT_LT(SecondsSince(start), 10.0);
        char block[4];
        EXPECT_EQ(file->Read(block, 4), 0);
        EXPECT_EQ(file->GetError(), 9);
    }
}

TEST(FtpNoServerTest, AnAddressWithNobodyListeningFailsQuickly) {
    const std::string address = FreshLoopbackAddress();
    const std::wstring host(address.begin(), address.end());
    for (const wchar_t* mode : {L"rb", L"wb"}) {
        const auto start = Clock::now();
        NETFileImpl file(host, L"/Data", L"run.vxs", mode);
        EXPECT_EQ(file.GetError(), kFtpErrCannotConnect);
        EXPECT_FALSE(file.GetErrorText().empty());
        EXPECT_FALSE(FtpErrorMeaning(file.GetError()).empty());
        EXPECT_LT(SecondsSince(start), 10.0);
    }
    NETFileImpl badHost(L"no host/", L"", L"run.vxs", L"rb");
    EXPECT_EQ(badHost.GetError(), 22);
}

} // namespace
