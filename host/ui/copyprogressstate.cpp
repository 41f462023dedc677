// SPDX-License-Identifier: Apache-2.0
#include "copyprogressstate.h"

void CCopyProgressState::Reset() {
    std::lock_guard lock(m_mutex);
    m_state = Snapshot();
    m_cancelled.store(false);
}

CCopyProgressState::Snapshot CCopyProgressState::Take() const {
    std::lock_guard lock(m_mutex);
    return m_state;
}

void CCopyProgressState::SetCurrentFile(const std::wstring& name) {
    std::lock_guard lock(m_mutex);
    m_state.currentFile = name;
    m_state.note.clear();
    m_state.fileSize = -1;
    m_state.fileBytes = 0;
    ++m_state.filesStarted;
}

void CCopyProgressState::SetFileSize(int64_t bytes) {
    std::lock_guard lock(m_mutex);
    m_state.fileSize = bytes;
}

void CCopyProgressState::AddBytes(int64_t bytes) {
    if (bytes <= 0)
        return;
    std::lock_guard lock(m_mutex);
    m_state.fileBytes += bytes;
    m_state.totalBytes += bytes;
}

void CCopyProgressState::SetDone() {
    std::lock_guard lock(m_mutex);
    m_state.done = true;
}

void CCopyProgressState::SetTotal(int64_t bytes, int files) {
    std::lock_guard lock(m_mutex);
    m_state.totalSize = bytes;
    m_state.totalFiles = files;
}

void CCopyProgressState::RetryFile(const std::wstring& note) {
    std::lock_guard lock(m_mutex);
    m_state.totalBytes -= m_state.fileBytes;
    m_state.fileBytes = 0;
    // The file starts again with SetCurrentFile and is counted once.
    if (m_state.filesStarted > 0)
        --m_state.filesStarted;
    m_state.note = note;
}
