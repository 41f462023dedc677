// SPDX-License-Identifier: Apache-2.0
#pragma once
// The simulator's log on stderr. Connection events and problems are always written; every frame
// received and sent only with --trace. Thread-safe: each connection thread writes whole lines.
#include <mutex>
#include <string>

struct FrameHeader;

class TraceLog {
public:
    explicit TraceLog(bool traceFrames);

    bool tracingFrames() const { return m_traceFrames; }
    void Frame(int connection, bool received, const FrameHeader& header, const std::string& note = {});
    void Note(int connection, const std::string& text);
    void Note(const std::string& text);

private:
    void WriteLine(const std::string& line);

    bool m_traceFrames;
    std::mutex m_mutex;
};
