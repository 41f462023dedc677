// SPDX-License-Identifier: Apache-2.0
#include "framesender.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "socketstream.h"
#include "tracelog.h"

FrameSender::FrameSender(SocketStream& stream, TraceLog& log, int connection, const FaultPlan& faults)
    : m_stream(stream), m_log(log), m_connection(connection), m_faults(faults) {
    if (m_faults.trickleMilliseconds)
        m_stream.SendImmediately();
}

bool FrameSender::Close(const char* reason) {
    m_log.Note(m_connection, std::string("fault: ") + reason + ", closing the connection");
    m_stream.Shutdown();
    m_open = false;
    return false;
}

bool FrameSender::Write(const std::uint8_t* bytes, std::size_t count, bool trickle) {
    if (!trickle)
        return m_stream.WriteAll(bytes, count);
    for (std::size_t i = 0; i < count; ++i) {
        if (!m_stream.WriteAll(bytes + i, 1))
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(*m_faults.trickleMilliseconds));
    }
    return true;
}

bool FrameSender::Send(const Frame& frame, bool faulted) {
    if (!m_open)
        return false;
    if (m_stalled) {
        m_log.Frame(m_connection, false, frame.header, "swallowed (stalled)");
        return true;
    }
    if (!faulted || m_faults.empty()) {
        m_log.Frame(m_connection, false, frame.header);
        const FrameCodec::HeaderBytes header = FrameCodec::EncodeHeader(frame.header);
        if (!m_stream.WriteAll(header.data(), header.size(), frame.payload.data(), frame.payload.size()))
            m_open = false;
        return m_open;
    }

    if (m_faults.dropAfterFrames && m_faultedFrames >= *m_faults.dropAfterFrames)
        return Close("frame limit reached");

    Frame sent = frame;
    const bool isData = frame.header.kind == wire::kKindData;
    if (m_faults.oversize && isData)
        sent.header.length = FaultPlan::kOversizeLength;
    const std::vector<std::uint8_t> bytes = FrameCodec::Encode(sent);

    std::size_t count = bytes.size();
    bool closeAfter = false;
    if (m_faults.closeMidFrameBytes && isData && count > *m_faults.closeMidFrameBytes) {
        count = *m_faults.closeMidFrameBytes;
        closeAfter = true;
    }
    bool stallAfter = false;
    if (m_faults.stallAfterBytes) {
        const std::size_t allowed =
            *m_faults.stallAfterBytes - std::min(m_faultedBytes, *m_faults.stallAfterBytes);
        if (count > allowed) {
            count = allowed;
            stallAfter = true;
            closeAfter = false;
        }
    }

    std::string note;
    if (count < bytes.size())
        note = "cut after " + std::to_string(count) + " of " + std::to_string(bytes.size()) + " bytes";
    m_log.Frame(m_connection, false, sent.header, note);
    if (m_faults.rateKibPerSecond)
        std::this_thread::sleep_for(
            std::chrono::microseconds(count * 1'000'000 / (*m_faults.rateKibPerSecond * 1024ull)));
    if (!Write(bytes.data(), count, m_faults.trickleMilliseconds.has_value())) {
        m_open = false;
        return false;
    }
    m_faultedBytes += count;
    ++m_faultedFrames;

    if (stallAfter) {
        m_log.Note(m_connection, "fault: stalled after " + std::to_string(m_faultedBytes) + " bytes");
        m_stalled = true;
        return true;
    }
    if (closeAfter)
        return Close("closed mid-frame");
    if (m_faults.dropAfterFrames && m_faultedFrames >= *m_faults.dropAfterFrames)
        return Close("frame limit reached");
    return true;
}
