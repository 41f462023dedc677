// SPDX-License-Identifier: Apache-2.0
#include "simconnection.h"

#include <chrono>
#include <thread>
#include <zlib.h>

#include "commandlanguage.h"
#include "faultplan.h"
#include "fileservice.h"
#include "pendingupload.h"
#include "simrequest.h"
#include "tracelog.h"
#include "wireconstants.h"

SimConnection::SimConnection(int fd, int id, const SimServices& services)
    : m_stream(fd), m_id(id), m_services(services), m_sender(m_stream, services.log, id, services.faults) {}

SimConnection::~SimConnection() {
    End();
}

void SimConnection::End() {
    for (const auto& [transfer, upload] : m_uploads)
        m_services.log.Note(m_id, "upload " + std::to_string(transfer) + " of " + upload->target().native() +
                                      " aborted; the file is left as it was");
    m_uploads.clear();
    // The peer learns of the end now, not when the server gets round to reaping this thread.
    m_stream.Shutdown();
}

void SimConnection::Shutdown() {
    m_stream.Shutdown();
}

void SimConnection::Run() {
    Serve();
    End();
    m_services.log.Note(m_id, "connection closed");
}

void SimConnection::Serve() {
    Frame frame;
    if (!ReadFrame(&frame)) {
        m_services.log.Note(m_id, "closed before the hello");
        return;
    }
    if (frame.header.kind != wire::kKindHello) {
        m_services.log.Note(m_id, "expected the hello frame, got " + FrameCodec::Describe(frame.header) +
                                      "; closing");
        return;
    }
    if (frame.header.flags != wire::kFlagHello || frame.payload.size() != wire::kHelloPayloadSize)
        m_services.log.Note(m_id, "unusual hello: " + FrameCodec::Describe(frame.header));
    while (ReadFrame(&frame) && HandleFrame(frame)) {
    }
}

bool SimConnection::ReadFrame(Frame* frame) {
    FrameCodec::HeaderBytes bytes;
    if (!m_stream.ReadExactly(bytes.data(), bytes.size()))
        return false;
    frame->header = FrameCodec::DecodeHeader(bytes);
    const std::string problem = FrameCodec::HeaderProblem(frame->header);
    if (!problem.empty()) {
        m_services.log.Note(m_id, problem + "; closing");
        return false;
    }
    frame->payload.resize(frame->header.length);
    if (!m_stream.ReadExactly(frame->payload.data(), frame->payload.size()))
        return false;
    std::string note;
    SimRequest request;
    std::string ignored;
    if (frame->header.kind == wire::kKindRequest && SimRequest::Parse(*frame, &request, &ignored))
        note = request.Describe();
    m_services.log.Frame(m_id, true, frame->header, note);
    return true;
}

bool SimConnection::HandleFrame(const Frame& frame) {
    switch (frame.header.kind) {
    case wire::kKindRequest:
        return HandleRequest(frame);
    case wire::kKindData:
        return HandleUploadData(frame);
    default:
        m_services.log.Note(m_id, "ignored " + FrameCodec::Describe(frame.header));
        return true;
    }
}

bool SimConnection::HandleRequest(const Frame& frame) {
    if (m_services.replyDelayMs > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(m_services.replyDelayMs));
    SimRequest request;
    std::string problem;
    if (!SimRequest::Parse(frame, &request, &problem)) {
        m_services.log.Note(m_id, problem);
        return m_sender.Send(FrameCodec::MakeReply(frame.header.argument, wire::kStatusInvalid, problem),
                             false);
    }
    if (request.command == wire::kCommandRun)
        return RunCommand(request);
    return ServeFile(request);
}

bool SimConnection::RunCommand(const SimRequest& request) {
    const CommandLanguage::Result result = m_services.commands.Execute(request.first);
    if (result.status != 0)
        return m_sender.Send(FrameCodec::MakeReply(request.id, result.status, result.text), false);
    std::vector<std::uint8_t> output(result.text.begin(), result.text.end());
    if (output.size() > wire::kMaxPayload)
        output.resize(wire::kMaxPayload);
    return m_sender.Send(FrameCodec::MakeData(request.id, 0, std::move(output)), false);
}

bool SimConnection::ServeFile(const SimRequest& request) {
    const FileService::FrameOutput out = [this](const Frame& frame) { return m_sender.Send(frame, true); };
    const FaultPlan& faults = m_services.faults;
    if (faults.replyStatus) {
        if (request.command == wire::kCommandWrite)
            m_uploads[request.id] =
                std::make_unique<PendingUpload>(std::filesystem::path(), "injected fault");
        return out(FrameCodec::MakeReply(request.id, *faults.replyStatus, "injected fault"));
    }
    const FileService& files = m_services.files;
    switch (request.command) {
    case wire::kCommandList:
        return files.List(request, out);
    case wire::kCommandWrite:
        if (m_uploads.count(request.id))
            m_services.log.Note(m_id, "upload " + std::to_string(request.id) + " replaced by a new one");
        m_uploads[request.id] = files.OpenUpload(request);
        return true;
    case wire::kCommandRead:
        return files.Read(request, out);
    case wire::kCommandDelete:
        return files.Delete(request, out);
    case wire::kCommandRename:
        return files.Rename(request, out);
    case wire::kCommandMakeFolder:
        return files.MakeFolder(request, out);
    case wire::kCommandDescribe:
        return files.Describe(request, out);
    default:
        return out(FrameCodec::MakeReply(request.id, wire::kStatusUnknownCommand,
                                         "unknown command code " + std::to_string(request.command)));
    }
}

bool SimConnection::HandleUploadData(const Frame& frame) {
    const auto found = m_uploads.find(frame.header.argument);
    if (frame.header.subArgument != wire::kUploadSubArgument || found == m_uploads.end()) {
        m_services.log.Note(m_id, "data frame for no open upload: " + FrameCodec::Describe(frame.header));
        return true;
    }
    PendingUpload& upload = *found->second;
    if (frame.header.flags & wire::kFlagCompressed) {
        std::vector<std::uint8_t> expanded(wire::kMaxPayload);
        uLongf size = static_cast<uLongf>(expanded.size());
        if (uncompress(expanded.data(), &size, frame.payload.data(),
                       static_cast<uLong>(frame.payload.size())) != Z_OK) {
            m_services.log.Note(m_id, "upload " + std::to_string(frame.header.argument) +
                                          ": a compressed frame does not expand; upload dropped");
            m_uploads.erase(found);
            return true;
        }
        upload.Append(expanded.data(), size);
    } else {
        upload.Append(frame.payload.data(), frame.payload.size());
    }
    if (frame.header.flags & wire::kFlagMore)
        return true;

    std::string problem;
    if (upload.Finish(&problem))
        m_services.log.Note(m_id, "wrote " + upload.target().native() + " (" +
                                      std::to_string(upload.bytesWritten()) + " bytes)");
    else
        m_services.log.Note(m_id, "upload " + std::to_string(frame.header.argument) + " refused: " + problem);
    m_uploads.erase(found);
    return true;
}
