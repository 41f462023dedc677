// SPDX-License-Identifier: Apache-2.0
#pragma once
// Sends the frames of one connection, applying the fault plan to the file service's frames.
// Used only by that connection's thread.
#include <cstddef>
#include <cstdint>

#include "faultplan.h"
#include "framecodec.h"

class SocketStream;
class TraceLog;

class FrameSender {
public:
    FrameSender(SocketStream& stream, TraceLog& log, int connection, const FaultPlan& faults);

    // Sends one frame; `faulted` frames go through the fault plan. False once the connection is to
    // close: the peer is gone or a fault closed it. A stalled connection swallows every frame and
    // stays open.
    bool Send(const Frame& frame, bool faulted);
    bool open() const { return m_open; }

private:
    bool Write(const std::uint8_t* bytes, std::size_t count, bool trickle);
    bool Close(const char* reason);

    SocketStream& m_stream;
    TraceLog& m_log;
    int m_connection;
    const FaultPlan& m_faults;
    std::size_t m_faultedBytes = 0;
    std::size_t m_faultedFrames = 0;
    bool m_stalled = false;
    bool m_open = true;
};
