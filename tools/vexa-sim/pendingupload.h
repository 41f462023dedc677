// SPDX-License-Identifier: Apache-2.0
#pragma once
// A file being written by the workstation. The bytes go to a hidden temporary file beside the target,
// which is renamed onto the target only when the last data frame has arrived, so an aborted upload
// never leaves a partial file under the final name.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

class PendingUpload {
public:
    // Opens the temporary file. When that fails (or `refusal` is non-empty) the upload only
    // swallows its data frames and reports the reason at the end.
    PendingUpload(std::filesystem::path target, std::string refusal = {});
    // Removes the temporary file unless the upload was finished.
    ~PendingUpload();
    PendingUpload(const PendingUpload&) = delete;
    PendingUpload& operator=(const PendingUpload&) = delete;

    bool Append(const std::uint8_t* bytes, std::size_t count);
    // Closes the temporary file and renames it onto the target. False with the reason on failure.
    bool Finish(std::string* problem);

    const std::filesystem::path& target() const { return m_target; }
    std::size_t bytesWritten() const { return m_written; }

private:
    void Discard();

    std::filesystem::path m_target;
    std::filesystem::path m_temporary;
    std::string m_problem;
    int m_fd = -1;
    std::size_t m_written = 0;
};
