// SPDX-License-Identifier: Apache-2.0
#pragma once
// A gzip-compressed tar archive written with libarchive. Entries are added one at a time; a file's
// bytes are streamed in blocks so a caller can report progress and stop between them.
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>

struct archive;

class TgzWriter {
public:
    TgzWriter() = default;
    ~TgzWriter();
    TgzWriter(const TgzWriter&) = delete;
    TgzWriter& operator=(const TgzWriter&) = delete;

    // Creates (or truncates) the archive file; false with the reason in problem().
    bool Open(const std::filesystem::path& file);
    // A folder entry; `name` is the path inside the archive, without a leading "/".
    bool AddFolder(const std::string& name, std::time_t modified);
    // A file entry copied from `source`. `onBlock` gets the byte count of each block written and
    // returns false to stop (the archive is then unusable).
    bool AddFile(const std::string& name, const std::filesystem::path& source,
                 const std::function<bool(std::size_t)>& onBlock);
    // Writes the end of the archive and closes the file.
    bool Close();

    const std::string& problem() const { return m_problem; }

private:
    bool Fail(const std::string& what);

    struct archive* m_archive = nullptr;
    std::string m_problem;
};
