// SPDX-License-Identifier: Apache-2.0
#pragma once
// One workstation connection: reads the hello, then serves request frames in order until the peer
// goes. Runs on its own thread; Shutdown may be called from any other thread to end it.
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "framecodec.h"
#include "framesender.h"
#include "socketstream.h"

class CommandLanguage;
class FaultPlan;
class FileService;
class PendingUpload;
class SimRequest;
class TraceLog;

// What every connection shares.
struct SimServices {
    const FileService& files;
    CommandLanguage& commands;
    const FaultPlan& faults;
    TraceLog& log;
    int replyDelayMs = 0; // every request is answered this late
};

class SimConnection {
public:
    SimConnection(int fd, int id, const SimServices& services);
    ~SimConnection();
    SimConnection(const SimConnection&) = delete;
    SimConnection& operator=(const SimConnection&) = delete;

    void Run();
    void Shutdown();

private:
    void Serve();
    // Aborts unfinished uploads and closes the connection.
    void End();
    bool ReadFrame(Frame* frame);
    bool HandleFrame(const Frame& frame);
    bool HandleRequest(const Frame& frame);
    bool HandleUploadData(const Frame& frame);
    bool RunCommand(const SimRequest& request);
    bool ServeFile(const SimRequest& request);

    SocketStream m_stream;
    int m_id;
    SimServices m_services;
    FrameSender m_sender;
    // Uploads in progress, by transfer id.
    std::map<std::uint32_t, std::unique_ptr<PendingUpload>> m_uploads;
};
