// SPDX-License-Identifier: Apache-2.0
#include "vxsfileinfoimpl.h"

#include "compression.h"
#include "linksensor.h"
#include "text.h"
#include "vexasensorobject.h"
#include "wildmatch.h"
#include "winsockerror.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <limits>

namespace {

// Module-wide, apart from the file transfer ids; every request takes the next one. Atomic only so two
// threads never race on it.
std::atomic<uint32_t> g_nextRequestId{1};

constexpr int kStatusReplySize = kFrameHeaderSize + 4;

// A path argument without an "@HOST:" prefix; false when the prefix has no ':'.
bool PathArgument(const std::wstring& path, std::string* utf8) {
    *utf8 = ToUtf8(path);
    return StripHostPrefix(*utf8);
}

} // namespace

uint32_t VXSFileInfoImpl::PeekNextRequestId() {
    return g_nextRequestId.load();
}

int64_t VXSFileInfoImpl::SecondsToMicroseconds(int32_t seconds) {
    double value = double(seconds) * 1000000.0;
    value += seconds >= 0 ? 0.01 : -0.01;
    return int64_t(value);
}

FileInfo VXSFileInfoImpl::DecodeRecord(const uint8_t* record) {
    FileInfo entry;
    const char* name = reinterpret_cast<const char*>(record);
    const size_t nameSize = std::find(name, name + kRecordNameSize, '\0') - name;
    entry.name = FromUtf8(std::string_view(name, nameSize));
    entry.size = int32_t(GetU32(record + 1024));
    for (int i = 0; i < 3; ++i)
        entry.times[i] = SecondsToMicroseconds(int32_t(GetU32(record + 1028 + 4 * i)));
    entry.attrib = GetU32(record + 1040) & kFileAttrFolder;
    return entry;
}

VXSFileInfoImpl::VXSFileInfoImpl(const std::wstring& host) : m_sensor(SelectLinkSensor(host)) {
    std::memset(m_frame, 0, sizeof m_frame);
}

VXSFileInfoImpl::~VXSFileInfoImpl() = default;

bool VXSFileInfoImpl::HasLink() const {
    return m_sensor && m_sensor->IsSocketValid();
}

std::wstring VXSFileInfoImpl::GetErrorText() const {
    if (m_replyStatus == 0)
        return {};
    if (uint32_t(m_error) == m_replyStatus)
        return m_replyText;
    std::wstring text = L"instrument status " + std::to_wstring(m_replyStatus);
    return m_replyText.empty() ? text : text + L": " + m_replyText;
}

void VXSFileInfoImpl::StartOperation() {
    m_error = 0;
    m_replyStatus = 0;
    m_replyText.clear();
    m_endOfData = false;
    m_linkFailed = false;
    m_answerBytes = 0;
}

bool VXSFileInfoImpl::Overrun(uint32_t payloadLength) {
    m_answerBytes += kFrameHeaderSize + uint64_t(payloadLength);
    if (m_answerBytes <= kMaxAnswerBytes)
        return false;
    m_error = kErrTooLarge;
    m_sensor->CloseLink();
    return true;
}

void VXSFileInfoImpl::NoteReply(uint32_t status, const uint8_t* text, uint32_t size) {
    m_replyStatus = status;
    const char* chars = reinterpret_cast<const char*>(text);
    size = uint32_t(std::find(chars, chars + size, '\0') - chars);
    m_replyText = FromUtf8(std::string_view(chars, size));
}

bool VXSFileInfoImpl::SendRequest(uint32_t command, uint16_t flags, const std::string& first,
                                  const std::string& second, uint32_t extra, uint32_t* id) {
    *id = g_nextRequestId.fetch_add(1);
    if (!m_sensor) {
        m_error = kWsaNotConn;
        return false;
    }
    BuildRequestFrame(m_frame, command, flags, *id, first, second, extra);
    if (m_sensor->SendBytes(m_frame, kRequestFrameSize) != kRequestFrameSize) {
        m_error = m_sensor->GetLastLinkError() ? m_sensor->GetLastLinkError() : kWsaNotConn;
        return false;
    }
    return true;
}

bool VXSFileInfoImpl::Receive(uint8_t* buffer, int count) {
    if (m_sensor->ReceiveBytes(buffer, count) == count)
        return true;
    // The link's own failure (time-out, reset) is what the user must read.
    const int linkError = m_sensor->GetLastLinkError();
    m_error = linkError != 0 ? linkError : kWsaNotConn;
    m_linkFailed = true;
    return false;
}

bool VXSFileInfoImpl::WaitForStatus() {
    // The next frame is taken as the answer, whatever its kind or id.
    if (!Receive(m_frame, kStatusReplySize))
        return false;
    m_header = DecodeHeader(m_frame);
    if (Overrun(m_header.length))
        return false;
    const uint32_t status = GetU32(m_frame + kFrameHeaderSize);
    uint8_t* rest = m_frame + kStatusReplySize;
    const uint32_t restSize = m_header.length > 4 ? m_header.length - 4 : 0;
    uint32_t kept = 0;
    for (uint32_t left = restSize; left > 0;) {
        const int chunk = int(std::min<uint32_t>(left, uint32_t(kMaxPayload - 4)));
        if (!Receive(rest, chunk))
            return false;
        if (kept == 0)
            kept = uint32_t(chunk); // the message text sits at the start
        left -= uint32_t(chunk);
    }
    if (status == 0)
        return true;
    NoteReply(status, rest, kept);
    return false;
}

bool VXSFileInfoImpl::WaitForData(uint32_t id) {
    if (!m_sensor || m_endOfData)
        return false;
    uint8_t* payload = m_frame + kFrameHeaderSize;
    for (;;) {
        m_header = FrameHeader{};
        std::memset(m_frame, 0, sizeof m_frame);
        if (!Receive(m_frame, kFrameHeaderSize))
            return false;
        m_header = DecodeHeader(m_frame);
        if (Overrun(m_header.length))
            return false;
        if (m_header.length > uint32_t(kMaxPayload)) {
            m_error = kErrTooLarge;
            return false;
        }
        if (m_header.length > 0 && !Receive(payload, int(m_header.length)))
            return false;
        if (id == 0 || m_header.argument == id) {
            if (m_header.kind == kFrameReply) {
                const uint32_t status = GetU32(payload);
                if (status != 0) {
                    m_error = int(status);
                    NoteReply(status, payload + 4, m_header.length >= 5 ? m_header.length - 4 : 0);
                    return false;
                }
            }
            if (m_header.flags & kFlagCompressed) {
                size_t expanded = sizeof m_scratch;
                if (!UncompressBuffer(m_scratch, &expanded, payload, m_header.length)) {
                    m_error = EPROTO;
                    return false;
                }
                std::memset(payload, 0, kMaxPayload);
                std::memcpy(payload, m_scratch, expanded);
                m_header.length = uint32_t(expanded);
                m_header.flags &= uint16_t(~kFlagCompressed);
            }
        }
        if (m_header.kind == kFrameData) {
            if ((m_header.flags & kFlagMore) == 0)
                m_endOfData = true;
            return true;
        }
    }
}

bool VXSFileInfoImpl::ReadSensorDir(const std::wstring& folder, std::vector<FileInfo>& entries,
                                    const std::wstring& pattern, uint32_t option) {
    entries.clear();
    StartOperation();
    std::string path = ToUtf8(folder);
    if (!path.empty() && path[0] == '@') {
        if (!StripHostPrefix(path) || path.empty()) {
            m_error = kErrInvalid;
            return false;
        }
    }
    if (path.size() >= size_t(kRequestArgSize)) {
        m_error = kErrInvalid;
        return false;
    }
    uint16_t flags = kFlagListing;
    if (option)
        flags |= kFlagListOption;
    uint32_t id = 0;
    if (!SendRequest(kCmdList, flags, path, "", 0, &id)) {
        // Later operations on this object fail at once.
        m_sensor.Reset();
        return false;
    }

    const std::string patternUtf8 = ToUtf8(pattern);
    bool parentSeen = false;
    // Ends on the last frame, on an error reply, or when the link fails (entries so far are kept).
    while (WaitForData(id)) {
        if (m_header.argument != id || (m_header.flags & kFlagListing) == 0)
            continue;
        const int records = int(m_header.length) / kDirectoryRecordSize;
        for (int i = 0; i < records; ++i) {
            const uint8_t* record = m_frame + kFrameHeaderSize + i * kDirectoryRecordSize;
            if (!patternUtf8.empty()) {
                const char* name = reinterpret_cast<const char*>(record);
                const std::string nameUtf8(name, std::find(name, name + kRecordNameSize, '\0'));
                if (!WildMatch(patternUtf8, nameUtf8, false))
                    continue;
            }
            entries.push_back(DecodeRecord(record));
            if (entries.back().name == L"..")
                parentSeen = true;
        }
    }
    // A listing cut short by the link keeps what came; the sensor (gone off line) tells why.
    if (m_linkFailed)
        m_error = 0;
    if (m_error != 0)
        return false;
    // Every folder but the root offers a way up, whether the instrument listed one or not.
    if (!parentSeen && path != "/") {
        FileInfo parent;
        parent.name = L"..";
        parent.size = -1;
        entries.push_back(parent);
    }
    return true;
}

bool VXSFileInfoImpl::StatusCommand(uint32_t command, uint16_t flags, const std::wstring& first,
                                    const std::wstring& second) {
    StartOperation();
    std::string firstUtf8, secondUtf8;
    if (!PathArgument(first, &firstUtf8) || !PathArgument(second, &secondUtf8)) {
        m_error = kErrInvalid;
        return false;
    }
    uint32_t id = 0;
    if (!SendRequest(command, flags, firstUtf8, secondUtf8, 0, &id))
        return false;
    return WaitForStatus();
}

bool VXSFileInfoImpl::MkDir(const std::wstring& path) {
    if (path.empty())
        return false;
    return StatusCommand(kCmdMkDir, 0, path, L"");
}

bool VXSFileInfoImpl::Rename(const std::wstring& oldPath, const std::wstring& newPath) {
    if (oldPath.empty() || newPath.empty())
        return false;
    return StatusCommand(kCmdRename, 0, oldPath, newPath);
}

bool VXSFileInfoImpl::RmDir(const std::wstring& path, bool recursive) {
    if (path.empty())
        return false;
    return StatusCommand(kCmdDelete, recursive ? kFlagRecursive : 0, path, L"");
}

bool VXSFileInfoImpl::Delete(const std::wstring& path) {
    if (path.empty())
        return false;
    return StatusCommand(kCmdDelete, 0, path, L"");
}

bool VXSFileInfoImpl::RunCommand(const std::wstring& command, std::wstring& output, int64_t timeoutUs) {
    output.clear();
    if (command.empty())
        return false;
    StartOperation();
    const int64_t seconds = std::clamp<int64_t>(timeoutUs / 1000000, 0, std::numeric_limits<uint32_t>::max());
    uint32_t id = 0;
    if (!SendRequest(kCmdRun, 0, ToUtf8(command), "", uint32_t(seconds), &id))
        return false;
    // Only the first data frame is the output.
    if (!WaitForData(id))
        return false;
    const char* text = reinterpret_cast<const char*>(m_frame + kFrameHeaderSize);
    output = FromUtf8(std::string_view(text, m_header.length));
    return true;
}

bool VXSFileInfoImpl::GetFileInfo(const std::wstring& path, FileInfo* entry, void* preview,
                                  int* previewSize) {
    if (path.empty() || entry == nullptr)
        return false;
    StartOperation();
    std::string pathUtf8;
    if (!PathArgument(path, &pathUtf8)) {
        m_error = kErrInvalid;
        return false;
    }
    uint32_t id = 0;
    if (!SendRequest(kCmdDescribe, 0, pathUtf8, "", 0, &id) || !WaitForData(id))
        return false;
    const uint8_t* payload = m_frame + kFrameHeaderSize;
    *entry = DecodeRecord(payload);
    if (preview && previewSize && *previewSize > 0) {
        // Never past the bytes that actually came (the rest of the buffer is zeros).
        const uint32_t present =
            m_header.length > uint32_t(kPreviewOffset) ? m_header.length - kPreviewOffset : 0;
        const uint32_t announced = GetU32(payload + kPreviewLengthOffset);
        const int count = int(std::min({uint32_t(*previewSize), announced, present}));
        std::memcpy(preview, payload + kPreviewOffset, size_t(count));
        *previewSize = count;
    }
    return true;
}
