// SPDX-License-Identifier: Apache-2.0
#include "vxsstdiofileimpl.h"

#include "compression.h"
#include "linksensor.h"
#include "pumpwait.h"
#include "sensorlink.h"
#include "text.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

namespace {

// Module-wide; every open takes the next id, whether it succeeds or not. Atomic only so that the copy
// worker and the user-interface thread may open files at the same time without a data race.
std::atomic<uint32_t> g_nextTransferId{1};

constexpr uint16_t kUploadSubArgument = 2; // the open-for-writing command, repeated in its data frames

// The instrument's message after the status word: UTF-8, possibly NUL-terminated.
std::wstring ReplyText(const uint8_t* payload, uint32_t length) {
    if (length < 5)
        return {};
    const char* text = reinterpret_cast<const char*>(payload + 4);
    size_t size = length - 4;
    size = std::find(text, text + size, '\0') - text;
    return FromUtf8(std::string_view(text, size));
}

} // namespace

uint32_t VXSStdioFileImpl::PeekNextTransferId() {
    return g_nextTransferId.load();
}

VXSStdioFileImpl::VXSStdioFileImpl(const std::wstring& host, const std::wstring& path,
                                   const std::wstring& mode) {
    ResetDataHeader();
    m_sensor = SelectLinkSensor(host);
    m_transferId = g_nextTransferId.fetch_add(1);

    if (!m_sensor || !m_sensor->IsSocketValid()) {
        m_error = kWsaNotConn;
        ReleaseSensor();
        return;
    }
    std::string pathUtf8 = ToUtf8(path);
    const bool prefixOk = StripHostPrefix(pathUtf8);
    if (!prefixOk || pathUtf8.empty() || pathUtf8.size() >= size_t(kRequestArgSize) || path.empty() ||
        mode.empty() || !ParseMode(mode)) {
        m_error = kErrInvalid;
        ReleaseSensor();
        return;
    }
    m_error = 0;

    if (m_openForReading) {
        BuildRequestFrame(m_frame, kCmdOpenRead, 0, m_transferId, pathUtf8, "");
        if (m_sensor->SendBytes(m_frame, kRequestFrameSize) != kRequestFrameSize) {
            // Reads as an empty file; the cause stays in the sensor's link error.
            Close();
            return;
        }
        if (FetchData(m_transferId))
            m_fileLength = int(m_header.extra);
        return;
    }

    BuildRequestFrame(m_frame, kCmdOpenWrite, kFlagOpenWrite, m_transferId, pathUtf8, "");
    if (m_sensor->SendBytes(m_frame, kRequestFrameSize) != kRequestFrameSize) {
        Close();
        return;
    }
    ResetDataHeader();
    m_header.argument = m_transferId;
    m_header.subArgument = kUploadSubArgument;
    m_state = State::kStreaming;
}

VXSStdioFileImpl::~VXSStdioFileImpl() {
    Close();
}

void VXSStdioFileImpl::ResetDataHeader() {
    m_header = FrameHeader{};
    m_header.kind = kFrameData;
    std::memset(m_frame, 0, sizeof m_frame);
}

bool VXSStdioFileImpl::ParseMode(const std::wstring& mode) {
    bool reading;
    if (mode[0] == L'r')
        reading = true;
    else if (mode[0] == L'w')
        reading = false;
    else
        return false;
    bool text = false, compressed = false;
    for (size_t i = 1; i < mode.size(); ++i) {
        switch (mode[i]) {
        case L'+':
            break;
        case L'b':
            text = false;
            break;
        case L't':
            text = true;
            break;
        case L'z':
            compressed = true;
            break;
        default:
            return false;
        }
    }
    // Recorded only: line ends are never translated and the workstation never compresses.
    m_openForReading = reading;
    m_textMode = text;
    m_compressedMode = compressed;
    return true;
}

void VXSStdioFileImpl::ReleaseSensor() {
    m_sensor.Reset();
    m_state = State::kClosed;
}

bool VXSStdioFileImpl::Close() {
    if (m_state == State::kClosed)
        return true;
    // A read has nothing left to deliver at close; a write must still get its last frame out.
    bool lastFrameSent = m_openForReading || m_state == State::kStreaming;
    if (!m_openForReading && m_state == State::kStreaming) {
        // The last data frame, without "more follows"; an empty file sends one of length 0. Nothing
        // answers a write, so only whether the frame left is known.
        m_header.flags &= uint16_t(~kFlagMore);
        lastFrameSent = SendBuffer();
    }
    if (m_openForReading && m_state == State::kStreaming)
        EndStream(true);
    // A request went out (or was tried): the instrument is given time to finish the file before the
    // next one.
    PumpWait(kCloseWaitMs);
    ReleaseSensor();
    return lastFrameSent;
}

bool VXSStdioFileImpl::SendBuffer() {
    if (!m_sensor)
        return false;
    EncodeHeader(m_header, m_frame);
    const int size = kFrameHeaderSize + int(m_header.length);
    if (m_sensor->SendBytes(m_frame, size) == size)
        return true;
    if (const int linkError = m_sensor->GetLastLinkError(); linkError != 0)
        m_error = linkError;
    return false;
}

bool VXSStdioFileImpl::ReceiveFrame() {
    if (m_sensor->ReceiveBytes(m_frame, kFrameHeaderSize) != kFrameHeaderSize) {
        TakeLinkError();
        return false;
    }
    m_header = DecodeHeader(m_frame);
    m_streamBytes += kFrameHeaderSize + uint64_t(m_header.length);
    // Headers add about 1/2048 to the file's bytes; compressed frames are smaller than what they hold.
    const uint64_t announced = uint32_t(m_fileLength);
    if (m_streamBytes > announced + announced / 64 + kStreamSlack) {
        m_error = EPROTO;
        m_replyText = L"the instrument sent more than the file's announced length";
        m_header.length = 0;
        m_sensor->CloseLink();
        return false;
    }
    if (m_header.length == 0)
        return true;
    if (m_header.length > uint32_t(kMaxPayload)) {
        m_error = kErrTooLarge;
        m_header.length = 0;
        return false;
    }
    const int length = int(m_header.length);
    if (m_sensor->ReceiveBytes(m_frame + kFrameHeaderSize, length) != length) {
        TakeLinkError();
        return false;
    }
    return true;
}

void VXSStdioFileImpl::TakeLinkError() {
    m_header.length = 0;
    // The link's own failure (time-out, reset) is what the user must read, not a later call's.
    if (const int linkError = m_sensor->GetLastLinkError(); linkError != 0)
        m_error = linkError;
}

void VXSStdioFileImpl::EndStream(bool inStep) {
    if (!m_sensor || !m_sensor->IsSocketValid())
        return;
    if (inStep && int64_t(m_fileLength) - m_received <= kDrainLimitBytes) {
        DrainRead();
        return;
    }
    // A fresh connection drops whatever the instrument still sends; the sensor stays on line.
    m_sensor->ReopenLink();
}

void VXSStdioFileImpl::DrainRead() {
    // The remaining frames are taken off so that the next request's answer is not mistaken for them.
    // Each receive is bounded by the link's time limit.
    while (ReceiveFrame()) {
        if (m_header.kind == kFrameReply && m_header.argument == m_transferId && m_header.length >= 4 &&
            GetU32(m_frame + kFrameHeaderSize) != 0)
            return;
        if (m_header.kind == kFrameData && (m_header.flags & kFlagMore) == 0)
            return;
    }
    // A frame was cut short: what follows on the link cannot be trusted.
    if (m_sensor->IsSocketValid())
        m_sensor->ReopenLink();
}

bool VXSStdioFileImpl::FetchData(uint32_t transferId) {
    m_readPos = 0;
    const uint8_t* payload = m_frame + kFrameHeaderSize;
    for (;;) {
        if (!ReceiveFrame()) {
            EndStream(false);
            m_state = State::kFailed;
            return false;
        }
        if (m_header.kind == kFrameReply && (transferId == 0 || m_header.argument == transferId)) {
            const uint32_t status = m_header.length >= 4 ? GetU32(payload) : 0;
            if (status != 0) {
                // The instrument has ended this transfer: nothing more of it follows.
                m_error = int(status);
                m_replyText = ReplyText(payload, m_header.length);
                m_header.length = 0;
                m_state = State::kFailed;
                return false;
            }
        }
        // Data frames are taken whatever their id: only replies are matched.
        if (m_header.kind == kFrameData)
            return AcceptData();
        // A reply with status 0, a reply for another transfer or another kind of frame: skipped.
    }
}

bool VXSStdioFileImpl::AcceptData() {
    const bool last = (m_header.flags & kFlagMore) == 0;
    if (m_header.flags & kFlagCompressed) {
        uint8_t* payload = m_frame + kFrameHeaderSize;
        size_t expanded = sizeof m_scratch;
        if (!UncompressBuffer(m_scratch, &expanded, payload, m_header.length)) {
            m_header.length = 0;
            if (!last)
                EndStream(true);
            m_state = State::kFailed;
            return false;
        }
        std::memcpy(payload, m_scratch, expanded);
        m_header.length = uint32_t(expanded);
        m_header.flags &= uint16_t(~kFlagCompressed);
    }
    m_received += m_header.length;
    m_state = last ? State::kEnded : State::kStreaming;
    return true;
}

int VXSStdioFileImpl::Read(void* buffer, int count) {
    if (buffer == nullptr || count < 1) {
        m_error = kErrInvalid;
        return -1;
    }
    if (!m_openForReading) {
        m_error = kErrBadFile;
        return -1;
    }
    // After a failed frame the stream has a hole: never read on past it.
    if (m_state == State::kFailed)
        return -1;
    auto* out = static_cast<uint8_t*>(buffer);
    int copied = 0;
    for (;;) {
        // Bytes already copied in this call are lost with a failed fetch, as callers expect.
        if (m_readPos >= int(m_header.length) && m_state == State::kStreaming && !FetchData(m_transferId))
            return -1;
        const int left = int(m_header.length) - m_readPos;
        if (left <= 0)
            return copied;
        const int n = std::min(count - copied, left);
        std::memcpy(out + copied, m_frame + kFrameHeaderSize + m_readPos, size_t(n));
        m_readPos += n;
        copied += n;
        if (copied == count)
            return copied;
    }
}

int VXSStdioFileImpl::Write(const void* buffer, int count) {
    if (buffer == nullptr || count < 1) {
        m_error = kErrInvalid;
        return -1;
    }
    if (m_state == State::kFailed)
        return -1;
    if (m_openForReading || m_state != State::kStreaming) {
        m_error = kErrBadFile;
        return -1;
    }
    const auto* in = static_cast<const uint8_t*>(buffer);
    int done = 0;
    for (;;) {
        // A full buffer leaves only when more bytes come, so the last frame is never empty unless the
        // whole file is.
        if (m_header.length == uint32_t(kMaxPayload)) {
            m_header.flags |= kFlagMore;
            if (!SendBuffer()) {
                m_state = State::kFailed;
                return -1;
            }
            m_header.length = 0;
        }
        const int room = kMaxPayload - int(m_header.length);
        const int n = std::min(count - done, room);
        std::memcpy(m_frame + kFrameHeaderSize + m_header.length, in + done, size_t(n));
        m_header.length += uint32_t(n);
        done += n;
        if (done == count)
            return count;
    }
}

bool VXSStdioFileImpl::ReadString(std::wstring& line) {
    std::string bytes;
    int taken = 0;
    for (;;) {
        char c;
        if (Read(&c, 1) != 1) {
            if (taken == 0) {
                line.clear();
                return false;
            }
            line = FromUtf8(bytes);
            return true;
        }
        ++taken;
        if (c == '\0')
            return false; // the line is left as it was
        if (c == '\r')
            continue;
        if (c == '\n') {
            line = FromUtf8(bytes);
            return true;
        }
        bytes += c;
    }
}

int VXSStdioFileImpl::WriteString(const std::wstring& text) {
    const std::string bytes = ToUtf8(text);
    // An empty text makes Write fail with 22, as callers of this back end expect.
    return Write(bytes.data(), int(bytes.size()));
}
