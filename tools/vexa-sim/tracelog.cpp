// SPDX-License-Identifier: Apache-2.0
#include "tracelog.h"

#include <cstdio>

#include "framecodec.h"

TraceLog::TraceLog(bool traceFrames) : m_traceFrames(traceFrames) {}

void TraceLog::Frame(int connection, bool received, const FrameHeader& header, const std::string& note) {
    if (!m_traceFrames)
        return;
    std::string line = "vexa-sim: [" + std::to_string(connection) + "] " + (received ? "<- " : "-> ") +
                       FrameCodec::Describe(header);
    if (!note.empty())
        line += " | " + note;
    WriteLine(line);
}

void TraceLog::Note(int connection, const std::string& text) {
    WriteLine("vexa-sim: [" + std::to_string(connection) + "] " + text);
}

void TraceLog::Note(const std::string& text) {
    WriteLine("vexa-sim: " + text);
}

void TraceLog::WriteLine(const std::string& line) {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::fprintf(stderr, "%s\n", line.c_str());
    std::fflush(stderr);
}
