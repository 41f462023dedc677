// SPDX-License-Identifier: Apache-2.0
// The workstation's file back end: stdio with fopen modes.
#include "stdiofile.h"

#include "paths.h"
#include "text.h"
#include "winsockerror.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <memory>
#include <string>

#include <sys/stat.h>

namespace {

// fopen modes: "r", "w" or "a", then any of "+", "b", "t" ("t" is the Windows text flag; files are
// always binary here, so line ends pass unchanged).
bool NarrowMode(const std::wstring& mode, std::string* out) {
    if (mode.empty() || (mode[0] != L'r' && mode[0] != L'w' && mode[0] != L'a'))
        return false;
    std::string narrow(1, static_cast<char>(mode[0]));
    bool plus = false;
    for (size_t i = 1; i < mode.size(); ++i) {
        if (mode[i] == L'+' && !plus) {
            plus = true;
            narrow += '+';
        } else if (mode[i] != L'b' && mode[i] != L't') {
            return false;
        }
    }
    *out = narrow + "b";
    return true;
}

class LocalStdioFileImpl : public StdioFileImpl {
public:
    LocalStdioFileImpl(const std::wstring& name, const std::wstring& mode) {
        std::string narrowMode;
        if (name.empty() || !NarrowMode(mode, &narrowMode)) {
            m_error = kErrInvalid;
            return;
        }
        m_file = OpenNativeFile(name, narrowMode.c_str());
        if (!m_file) {
            m_error = errno;
            return;
        }
        // The copy paths write 16 KiB blocks; stdio's default buffer (the file system's block size)
        // would turn each into several system calls. Larger than the processor's cache, though, a
        // buffer costs more in copying than it saves (1 MiB made a get three times slower than
        // 128 KiB). stdio takes the size only with our own buffer. Reading needs none: a block read
        // at least as large as the default buffer goes straight into the caller's memory.
        if (narrowMode != "rb") {
            m_buffer = std::make_unique_for_overwrite<char[]>(kBufferSize);
            std::setvbuf(m_file, m_buffer.get(), _IOFBF, kBufferSize);
        }
        // A folder opens for reading on some systems; it is no file.
        if (IsDirectory(name)) {
            std::fclose(m_file);
            m_file = nullptr;
            m_error = EISDIR;
        }
    }

    ~LocalStdioFileImpl() override {
        if (m_file)
            std::fclose(m_file);
    }

    int Read(void* buffer, int count) override {
        if (!Usable(buffer, count))
            return -1;
        if (count == 0)
            return 0;
        Switch(Op::Read);
        const size_t n = std::fread(buffer, 1, static_cast<size_t>(count), m_file);
        if (n == 0 && std::ferror(m_file)) {
            m_error = errno ? errno : EIO;
            std::clearerr(m_file);
            return -1;
        }
        return static_cast<int>(n);
    }

    int Write(const void* buffer, int count) override {
        if (!Usable(buffer, count))
            return -1;
        if (count == 0)
            return 0;
        Switch(Op::Write);
        const size_t n = std::fwrite(buffer, 1, static_cast<size_t>(count), m_file);
        if (n != static_cast<size_t>(count)) {
            m_error = errno ? errno : EIO;
            std::clearerr(m_file);
            return -1;
        }
        return count;
    }

    // One line: "\r" dropped, "\n" ends it (not stored); true when at least one byte was read.
    bool ReadString(std::wstring& line) override {
        if (!m_file) {
            m_error = kErrBadFile;
            return false;
        }
        Switch(Op::Read);
        std::string bytes;
        bool any = false;
        for (;;) {
            const int c = std::getc(m_file);
            if (c == EOF)
                break;
            any = true;
            if (c == '\n')
                break;
            if (c != '\r')
                bytes += static_cast<char>(c);
        }
        if (std::ferror(m_file)) {
            m_error = errno ? errno : EIO;
            std::clearerr(m_file);
        }
        line = FromUtf8(bytes);
        return any;
    }

    int WriteString(const std::wstring& text) override {
        const std::string bytes = ToUtf8(text);
        if (!m_file) {
            m_error = kErrBadFile;
            return -1;
        }
        if (!bytes.empty() && Write(bytes.data(), static_cast<int>(bytes.size())) < 0)
            return -1;
        return static_cast<int>(text.size());
    }

    int GetError() override { return m_error; }

    // Flushes and closes; a failed flush (a full disk) reports its errno here.
    bool Close() override {
        if (!m_file)
            return true;
        const int result = std::fclose(m_file);
        m_file = nullptr;
        if (result != 0) {
            m_error = errno ? errno : EIO;
            return false;
        }
        return true;
    }

    int Tell() override {
        if (!m_file)
            return -1;
        const long position = std::ftell(m_file);
        return position > INT_MAX ? INT_MAX : static_cast<int>(position);
    }

    void Seek(int offset, int origin) override {
        if (!m_file)
            return;
        const int whence = origin == 1 ? SEEK_CUR : origin == 2 ? SEEK_END : SEEK_SET;
        if (std::fseek(m_file, offset, whence) != 0)
            m_error = errno;
        m_last = Op::None;
    }

    int GetLength() override {
        if (!m_file)
            return -1;
        std::fflush(m_file);
        struct stat st {};
        if (fstat(fileno(m_file), &st) != 0) {
            m_error = errno;
            return -1;
        }
        return st.st_size > INT_MAX ? INT_MAX : static_cast<int>(st.st_size);
    }

private:
    enum class Op { None, Read, Write };

    bool Usable(const void* buffer, int count) {
        if (buffer == nullptr || count < 0) {
            m_error = kErrInvalid;
            return false;
        }
        if (!m_file) {
            m_error = kErrBadFile;
            return false;
        }
        return true;
    }

    // stdio needs a positioning call between reading and writing on an update stream.
    void Switch(Op op) {
        if (m_last != Op::None && m_last != op)
            std::fseek(m_file, 0, SEEK_CUR);
        m_last = op;
    }

    static constexpr size_t kBufferSize = 128 * 1024;

    FILE* m_file = nullptr;
    std::unique_ptr<char[]> m_buffer; // outlives m_file: fclose flushes from it
    int m_error = 0;
    Op m_last = Op::None;
};

} // namespace

StdioFileImpl* CreateLocalStdioFileImpl(const std::wstring& name, const std::wstring& mode) {
    return new LocalStdioFileImpl(name, mode);
}
