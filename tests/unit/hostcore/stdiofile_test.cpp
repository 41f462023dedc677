// SPDX-License-Identifier: Apache-2.0
#include "stdiofile.h"

#include "tempdir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

namespace {
std::wstring W(const std::string& text) {
    return std::wstring(text.begin(), text.end());
}

// A remote back end that records what it was made for.
class FakeRemoteFile : public StdioFileImpl {
public:
    FakeRemoteFile(int error, std::wstring errorText) : m_error(error), m_errorText(std::move(errorText)) {}
    // A transfer that the other side cuts short at the end.
    bool Close() override {
        if (!failClose)
            return true;
        m_error = 10054;
        m_errorText = L"closed early";
        return false;
    }
    bool failClose = false;
    int Read(void*, int) override { return 0; }
    int Write(const void*, int count) override { return count; }
    int GetError() override { return m_error; }
    int Tell() override { return -1; }
    void Seek(int, int) override {}
    int GetLength() override { return 1234; }
    std::wstring GetErrorText() override { return m_errorText; }
    const wchar_t* TransportName() const override { return L"fake"; }

private:
    int m_error;
    std::wstring m_errorText;
};

class FakeFactory : public StdioFileImplFactory {
public:
    explicit FakeFactory(std::wstring servedHost, int error = 0, std::wstring errorText = {})
        : m_host(std::move(servedHost)), m_error(error), m_errorText(std::move(errorText)) {}
    StdioFileImpl* Create(const std::wstring& name, const std::wstring& mode) override {
        asked.push_back(name + L"|" + mode);
        if (name.rfind(L"@" + m_host + L":", 0) != 0)
            return nullptr;
        return new FakeRemoteFile(m_error, m_errorText);
    }
    std::vector<std::wstring> asked;

private:
    std::wstring m_host;
    int m_error;
    std::wstring m_errorText;
};
} // namespace

TEST(StdioFile, LocalWriteThenRead) {
    TempDir dir;
    const std::wstring name = W(dir.file("data.bin"));
    StdioFile out;
    ASSERT_TRUE(out.Open(name, L"wb"));
    EXPECT_STREQ(out.TransportName(), L"local");
    EXPECT_EQ(out.Write("abc\0def", 7), 7);
    EXPECT_EQ(out.Write("", 0), 0);
    EXPECT_EQ(out.Write(nullptr, 3), -1);
    EXPECT_EQ(out.GetError(), 22);
    EXPECT_EQ(out.GetLength(), 7);
    out.Close();
    out.Close(); // idempotent
    EXPECT_FALSE(out.IsOpen());

    StdioFile in;
    ASSERT_TRUE(in.Open(name, L"rb"));
    EXPECT_EQ(in.GetLength(), 7);
    char buffer[16] = {};
    EXPECT_EQ(in.Read(buffer, sizeof buffer), 7);
    EXPECT_EQ(std::string(buffer, 7), std::string("abc\0def", 7));
    EXPECT_EQ(in.Read(buffer, sizeof buffer), 0); // end of file
    EXPECT_EQ(in.Read(buffer, -1), -1);
    EXPECT_EQ(in.GetError(), 22);
    EXPECT_EQ(in.Write("x", 1), -1); // opened for reading only
}

TEST(StdioFile, LinesAsUtf8) {
    TempDir dir;
    const std::wstring name = W(dir.createFile("t.txt", "first\r\n\nGrad \xC2\xB0"
                                                        "C\nbad \xFF\nlast"));
    StdioFile file;
    ASSERT_TRUE(file.Open(name, L"r"));
    std::vector<std::wstring> lines;
    std::wstring line;
    while (file.ReadString(line))
        lines.push_back(line);
    EXPECT_EQ(lines, (std::vector<std::wstring>{L"first", L"", L"Grad \u00b0C", L"bad \ufffd", L"last"}));

    StdioFile out;
    ASSERT_TRUE(out.Open(W(dir.file("w.txt")), L"w"));
    EXPECT_EQ(out.WriteString(L"\u00b0C\n"), 3); // characters, not bytes
    out.Close();
    EXPECT_EQ(ReadWholeFile(dir.file("w.txt")), "\xC2\xB0"
                                                "C\n");
}

TEST(StdioFile, ModesAndErrors) {
    TempDir dir;
    StdioFile file;
    EXPECT_FALSE(file.Open(W(dir.file("missing")), L"r"));
    EXPECT_EQ(file.GetError(), ENOENT);
    EXPECT_FALSE(file.IsOpen());
    for (const wchar_t* bad : {L"", L"x", L"rw", L"r++", L"q+"}) {
        EXPECT_FALSE(file.Open(W(dir.file("any")), bad)) << testing::PrintToString(std::wstring(bad));
        EXPECT_EQ(file.GetError(), 22);
    }
    EXPECT_FALSE(file.Open(W(dir.path()), L"r")); // a folder is no file
    EXPECT_EQ(file.GetError(), EISDIR);
    EXPECT_FALSE(file.Open(L"", L"r"));

    // Without an open file every operation fails with 9.
    char c;
    EXPECT_EQ(file.Read(&c, 1), -1);
    EXPECT_EQ(file.GetError(), 9);
    std::wstring line;
    EXPECT_FALSE(file.ReadString(line));
    EXPECT_EQ(file.WriteString(L"x"), -1);
    EXPECT_EQ(file.GetLength(), -1);

    // Data that cannot be flushed at the close is reported there.
    if (FileExists("/dev/full")) {
        ASSERT_TRUE(file.Open(L"/dev/full", L"w"));
        EXPECT_EQ(file.Write("lost", 4), 4); // still in the buffer
        EXPECT_FALSE(file.Close());
        EXPECT_EQ(file.GetError(), ENOSPC);
    }

    // Update mode: read, then write, then read back; appending keeps the old content.
    const std::wstring name = W(dir.createFile("u.txt", "0123456789"));
    ASSERT_TRUE(file.Open(name, L"r+b"));
    char buffer[4] = {};
    EXPECT_EQ(file.Read(buffer, 4), 4);
    EXPECT_EQ(file.Write("AB", 2), 2);
    file.Impl()->Seek(0, 0);
    EXPECT_EQ(file.Impl()->Tell(), 0);
    char all[16] = {};
    EXPECT_EQ(file.Read(all, 16), 10);
    EXPECT_EQ(std::string(all, 10), "0123AB6789");
    file.Impl()->Seek(-2, 2);
    EXPECT_EQ(file.Impl()->Tell(), 8);
    file.Close();
    ASSERT_TRUE(file.Open(name, L"a"));
    EXPECT_EQ(file.Write("!", 1), 1);
    file.Close();
    EXPECT_EQ(ReadWholeFile(dir.file("u.txt")), "0123AB6789!");
}

TEST(StdioFile, RemoteNamesGoToFactoriesInOrder) {
    StdioFile file;
    {
        EXPECT_FALSE(file.Open(L"@box:/Data/run.vxs", L"rb"));
        EXPECT_EQ(file.GetError(), 10057); // nobody serves remote names
    }
    FakeFactory first(L"other");
    FakeFactory second(L"box");
    FakeFactory third(L"box");
    ASSERT_TRUE(file.Open(L"@box:/Data/run.vxs", L"rb"));
    EXPECT_STREQ(file.TransportName(), L"fake");
    EXPECT_EQ(file.GetLength(), 1234);
    EXPECT_EQ(first.asked, (std::vector<std::wstring>{L"@box:/Data/run.vxs|rb"}));
    EXPECT_EQ(second.asked.size(), 1u);
    EXPECT_TRUE(third.asked.empty()); // the first back end wins
    file.Close();

    // A local name never reaches the factories.
    TempDir dir;
    ASSERT_TRUE(file.Open(W(dir.file("local.txt")), L"w"));
    EXPECT_EQ(first.asked.size(), 1u);
    file.Close();

    // A back end that cannot finish the transfer makes Close fail and keeps its reason.
    ASSERT_TRUE(file.Open(L"@box:/Data/out.vxs", L"wb"));
    static_cast<FakeRemoteFile*>(file.Impl())->failClose = true;
    EXPECT_FALSE(file.Close());
    EXPECT_EQ(file.GetError(), 10054);
    EXPECT_EQ(file.GetErrorText(), L"closed early");
    EXPECT_TRUE(file.Close()); // nothing left to close

    {
        FakeFactory failing(L"err", 2, L"no such file");
        EXPECT_FALSE(file.Open(L"@err:/x", L"r"));
        EXPECT_EQ(file.GetError(), 2);
        EXPECT_EQ(file.GetErrorText(), L"no such file");
        EXPECT_FALSE(file.IsOpen());
    }
    // Unregistered when destroyed.
    EXPECT_FALSE(file.Open(L"@err:/x", L"r"));
    EXPECT_EQ(file.GetError(), 10057);
}
