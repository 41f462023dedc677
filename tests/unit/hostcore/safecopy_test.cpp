// SPDX-License-Identifier: Apache-2.0
#include "fileinfoputinplace.h"
#include "safecopy.h"

#include "recordingprogress.h"
#include "tempdir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

namespace {

std::wstring W(const std::string& text) {
    return std::wstring(text.begin(), text.end());
}

// An instrument file that yields `content` and announces `announced` bytes at the open.
class AnnouncingFile : public StdioFileImpl {
public:
    AnnouncingFile(std::string content, int announced)
        : m_content(std::move(content)), m_announced(announced) {}
    int Read(void* buffer, int count) override {
        const int n = std::min(count, int(m_content.size() - m_pos));
        std::memcpy(buffer, m_content.data() + m_pos, size_t(n));
        m_pos += size_t(n);
        return n;
    }
    int Write(const void*, int) override { return -1; }
    int GetError() override { return 0; }
    int Tell() override { return int(m_pos); }
    void Seek(int, int) override {}
    int GetLength() override { return m_announced; }
    const wchar_t* TransportName() const override { return L"link"; }

private:
    std::string m_content;
    int m_announced;
    size_t m_pos = 0;
};

// Serves "@announcing:" names with the content and length the case sets.
class AnnouncingFactory : public StdioFileImplFactory {
public:
    StdioFileImpl* Create(const std::wstring& name, const std::wstring&) override {
        if (name.rfind(L"@announcing:", 0) != 0)
            return nullptr;
        return new AnnouncingFile(content, announced);
    }
    std::string content;
    int announced = 0;
};

// The workstation's put-in-place, with a rename that can be made to fail.
class FailingRename : public FileInfoPutInPlace {
public:
    bool Rename(const std::wstring& from, const std::wstring& to) override {
        if (!fail)
            return FileInfoPutInPlace::Rename(from, to);
        m_refused = true;
        return false;
    }
    int LastError() const override { return m_refused ? EACCES : FileInfoPutInPlace::LastError(); }
    std::wstring LastErrorText() const override {
        return m_refused ? L"refused" : FileInfoPutInPlace::LastErrorText();
    }
    bool fail = false;

private:
    bool m_refused = false;
};

} // namespace

// Every way a copy can end: only a complete file ever takes the final name, and the temporary file
// stays only when it has become the one copy left.
TEST(SafeCopy, FinalNameOnlyEverHoldsACompleteFile) {
    const std::string big(3 * kCopyBlockSize + 5, 'n');
    struct Case {
        const char* name;
        std::string source; // "@" + content: an instrument file announcing `announced` bytes
        int announced;
        bool oldFile, cancel, lost, failRename;
        bool ok;
        int error;
        std::string finalContent; // "" : no final file
        bool temporaryStays;
        std::wstring text;
    } cases[] = {
        {"replaces the old file", big, 0, true, false, false, false, true, 0, big, false, L""},
        {"makes a new file", "new", 0, false, false, false, false, true, 0, "new", false, L""},
        {"an empty file", "", 0, true, false, false, false, true, 0, "", false, L""},
        {"a cancel keeps the old file", big, 0, true, true, false, false, false, ECANCELED, "old", false,
         L"cancelled"},
        {"a source shorter than announced", "@abc", 10, true, false, false, false, false, EIO, "old", false,
         L"the source ended before its announced length"},
        {"the announced length met", "@abc", 3, true, false, false, false, true, 0, "abc", false, L""},
        {"a source longer than announced", "@abcdef", 3, true, false, false, false, false, EFBIG, "old",
         false, L"the source sent more than the 3 bytes it announced"},
        {"a stream past its announced length by whole blocks", "@" + big, kCopyBlockSize, true, false, false,
         false, false, EFBIG, "old", false,
         L"the source sent more than the " + std::to_wstring(kCopyBlockSize) + L" bytes it announced"},
        {"a lost source", "@abc", 3, true, false, true, false, false, 9, "old", false, L""},
        {"a refused rename after the old file went", "new", 0, true, false, false, true, false, EACCES, "",
         true, L"refused; the new file was kept as "},
        {"a refused rename with no old file", "new", 0, false, false, false, true, false, EACCES, "", false,
         L"refused"},
    };
    AnnouncingFactory instrument;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::wstring finalName = W(dir.file("run.vxs"));
        const std::wstring temporaryName = W(dir.file("___temp@@run.vxs"));
        if (c.oldFile)
            dir.createFile("run.vxs", "old");
        std::wstring sourceName = W(dir.createFile("source", c.source));
        if (!c.source.empty() && c.source[0] == '@') {
            instrument.content = c.source.substr(1);
            instrument.announced = c.announced;
            sourceName = L"@announcing:/Data/run.vxs";
        }
        StdioFile in, out;
        ASSERT_TRUE(in.Open(sourceName, L"rb"));
        ASSERT_TRUE(out.Open(temporaryName, L"wb"));
        RecordingProgress progress;
        progress.cancelAfter = c.cancel ? kCopyBlockSize : -1;
        FailingRename placer;
        placer.fail = c.failRename;
        SafeCopy copy{.in = in,
                      .out = out,
                      .temporaryName = temporaryName,
                      .finalName = finalName,
                      .placer = placer,
                      .progress = &progress,
                      .sourceLost = [&] { return c.lost; }};
        int error = -1;
        std::wstring text;
        EXPECT_EQ(copy.Run(&error, &text), c.ok);
        if (!c.ok) {
            EXPECT_EQ(error, c.error);
            EXPECT_EQ(text, c.temporaryStays ? c.text + temporaryName : c.text);
        }
        EXPECT_EQ(FileExists(dir.file("run.vxs")), c.ok || !c.finalContent.empty());
        if (FileExists(dir.file("run.vxs"))) {
            EXPECT_EQ(ReadWholeFile(dir.file("run.vxs")), c.finalContent);
        }
        EXPECT_EQ(FileExists(dir.file("___temp@@run.vxs")), c.temporaryStays);
        EXPECT_FALSE(in.IsOpen());
        EXPECT_FALSE(out.IsOpen());
    }
}
