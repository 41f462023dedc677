// SPDX-License-Identifier: Apache-2.0
#include "pendingupload.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::atomic<unsigned> g_uploadCounter{0};

} // namespace

PendingUpload::PendingUpload(fs::path target, std::string refusal)
    : m_target(std::move(target)), m_problem(std::move(refusal)) {
    if (!m_problem.empty())
        return;
    std::error_code error;
    if (fs::is_directory(m_target, error)) {
        m_problem = "a folder of that name exists";
        return;
    }
    m_temporary = m_target.parent_path() / (".vexa-sim-upload." + std::to_string(::getpid()) + "." +
                                            std::to_string(++g_uploadCounter) + ".part");
    m_fd = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (m_fd < 0)
        m_problem = std::string("cannot create the file: ") + std::strerror(errno);
}

PendingUpload::~PendingUpload() {
    Discard();
}

void PendingUpload::Discard() {
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
    if (!m_temporary.empty()) {
        std::error_code ignored;
        fs::remove(m_temporary, ignored);
        m_temporary.clear();
    }
}

bool PendingUpload::Append(const std::uint8_t* bytes, std::size_t count) {
    if (m_fd < 0)
        return false;
    while (count > 0) {
        const ssize_t written = ::write(m_fd, bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            m_problem = std::string("cannot write the file: ") + std::strerror(errno);
            Discard();
            return false;
        }
        bytes += written;
        count -= static_cast<std::size_t>(written);
        m_written += static_cast<std::size_t>(written);
    }
    return true;
}

bool PendingUpload::Finish(std::string* problem) {
    if (m_fd < 0) {
        *problem = m_problem.empty() ? "the upload is not open" : m_problem;
        return false;
    }
    const int closed = ::close(m_fd);
    m_fd = -1;
    if (closed != 0) {
        *problem = std::string("cannot write the file: ") + std::strerror(errno);
        Discard();
        return false;
    }
    if (::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        *problem = std::string("cannot put the file in place: ") + std::strerror(errno);
        Discard();
        return false;
    }
    m_temporary.clear();
    return true;
}
