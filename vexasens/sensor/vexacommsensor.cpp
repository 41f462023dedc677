// SPDX-License-Identifier: Apache-2.0
#include "vexacommsensor.h"

#include "compression.h"
#include "linkframe.h"
#include "sensorobject.h"
#include "text.h"
#include "winsockerror.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace {

// Request ids of this channel; the instrument echoes them in its answer frames.
std::atomic<uint32_t> g_nextRequestId{1};

// Frames of other requests (late answers of an earlier, failed command) are skipped; this bounds how
// many, so a babbling instrument cannot hold the caller forever.
constexpr int kMaxSkippedFrames = 256;
// The answer of one command, joined from its data frames.
constexpr size_t kMaxAnswerBytes = 16u << 20;
// The quoted command and its terminating NUL must fit the request's 1024-byte field.
constexpr size_t kMaxCommandBytes = kRequestArgSize - 3;

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

bool DecodeHex(std::string_view hex, uint8_t* out, uint32_t size) {
    if (hex.size() != size_t(size) * 2)
        return false;
    for (uint32_t i = 0; i < size; ++i) {
        int high = HexDigit(hex[2 * i]), low = HexDigit(hex[2 * i + 1]);
        if (high < 0 || low < 0)
            return false;
        out[i] = uint8_t(high << 4 | low);
    }
    return true;
}

std::string EncodeHex(const uint8_t* bytes, uint32_t size) {
    static const char digits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(size_t(size) * 2);
    for (uint32_t i = 0; i < size; ++i) {
        hex += digits[bytes[i] >> 4];
        hex += digits[bytes[i] & 0x0F];
    }
    return hex;
}

} // namespace

VexaCommSensor::VexaCommSensor(ISensorObject& sensor, uint16_t port)
    : m_sensor(sensor), m_port(port), m_link([this] { m_lost = true; }) {}

VexaCommSensor::~VexaCommSensor() {
    m_link.Close();
}

IChannel* VexaCommSensor::GetChannel(int index) {
    return index == 0 ? this : nullptr;
}

bool VexaCommSensor::Open() {
    std::lock_guard lock(m_link.Lock());
    m_lost = false;
    m_link.Open(m_sensor.GetSensorAddress().GetHostname(), m_port);
    m_lastError = m_link.LastError();
    return m_link.IsOpen();
}

void VexaCommSensor::Close() {
    m_link.Close();
}

bool VexaCommSensor::IsOpen() const {
    return m_link.IsOpen();
}

int VexaCommSensor::LastError() const {
    std::lock_guard lock(m_link.Lock());
    return m_lastError;
}

void VexaCommSensor::Fail(int error) {
    std::lock_guard lock(m_link.Lock());
    m_lastError = error;
    m_link.SetLastError(error);
}

void VexaCommSensor::LoseConnection() {
    m_link.Close();
    m_lost = true;
}

// The sensor goes off line only once this connection's lock is released: going off line takes the main
// link's lock, and a thread that times out on the main link closes this channel while holding it.
bool VexaCommSensor::Run(const std::string& commandUtf8, std::string* answer, std::string* message,
                         int* error) {
    bool ok = false;
    {
        std::lock_guard lock(m_link.Lock());
        ok = Exchange(commandUtf8, answer, message);
        *error = ok ? 0 : m_lastError;
    }
    if (m_lost.exchange(false))
        m_sensor.Disconnect(0);
    return ok;
}

bool VexaCommSensor::Read(uint32_t id, void* buffer, uint32_t size, uint32_t index) {
    if (buffer == nullptr && size > 0)
        return false;
    std::string command =
        "param get " + std::to_string(id) + " " + std::to_string(index) + " " + std::to_string(size);
    std::string answer, message;
    int error = 0;
    if (!Run(command, &answer, &message, &error))
        return false;
    if (!DecodeHex(TrimBlanks(answer), static_cast<uint8_t*>(buffer), size)) {
        Fail(kErrInvalid);
        return false;
    }
    return true;
}

bool VexaCommSensor::Write(uint32_t id, const void* buffer, uint32_t size, uint32_t index) {
    if (buffer == nullptr && size > 0)
        return false;
    std::string command = "param set " + std::to_string(id) + " " + std::to_string(index) + " " +
                          EncodeHex(static_cast<const uint8_t*>(buffer), size);
    std::string answer, message;
    int error = 0;
    if (!Run(command, &answer, &message, &error))
        return false;
    if (TrimBlanks(answer) != "ok") {
        Fail(kErrInvalid);
        return false;
    }
    return true;
}

bool VexaCommSensor::Command(const std::wstring& command, std::wstring* answer, int* error) {
    std::string output, message;
    int failure = 0;
    bool ok = Run(ToUtf8(command), &output, &message, &failure);
    if (answer != nullptr)
        *answer = FromUtf8(ok ? output : message);
    if (error != nullptr)
        *error = failure;
    return ok;
}

// Called with the connection's lock held.
bool VexaCommSensor::Exchange(const std::string& commandUtf8, std::string* answer, std::string* message) {
    answer->clear();
    message->clear();
    if (m_inExchange) {
        Fail(kWsaWouldBlock);
        return false;
    }
    m_inExchange = true;
    struct ExchangeDone {
        bool& flag;
        ~ExchangeDone() { flag = false; }
    } done{m_inExchange};
    if (commandUtf8.size() > kMaxCommandBytes) {
        Fail(kErrInvalid);
        return false;
    }
    if (!m_link.IsOpen()) {
        Fail(kWsaNotConn);
        return false;
    }
    const uint32_t id = g_nextRequestId.fetch_add(1);
    auto request = std::make_unique<uint8_t[]>(kRequestFrameSize);
    BuildRequestFrame(request.get(), kCmdRun, 0, id, commandUtf8, std::string(), kCommandTimeoutSeconds);
    if (m_link.Send(request.get(), kRequestFrameSize) != kRequestFrameSize) {
        m_lastError = m_link.LastError();
        return false;
    }

    int skipped = 0;
    for (;;) {
        uint8_t headerBytes[kFrameHeaderSize];
        std::string payload;
        if (!ReceiveFrame(headerBytes, &payload))
            return false;
        const FrameHeader header = DecodeHeader(headerBytes);
        if (header.argument != id) {
            if (++skipped > kMaxSkippedFrames) {
                Fail(kWsaTimedOut);
                return false;
            }
            continue;
        }
        if (header.kind == kFrameReply) {
            uint32_t status =
                payload.size() >= 4 ? GetU32(reinterpret_cast<const uint8_t*>(payload.data())) : 0;
            if (status == 0)
                return true; // done, with whatever data came before
            if (payload.size() > 4)
                *message = payload.substr(4);
            Fail(int(status));
            return false;
        }
        if (header.kind != kFrameData)
            continue;
        if (answer->size() + payload.size() > kMaxAnswerBytes) {
            Fail(kErrTooLarge);
            LoseConnection(); // the rest of the answer would be read as the next command's
            return false;
        }
        *answer += payload;
        if ((header.flags & kFlagMore) == 0)
            return true;
    }
}

// Receives one frame and expands a compressed payload. A frame that cannot belong to the protocol
// (wrong marker, oversize, undecodable) closes the connection: the byte stream is out of step.
bool VexaCommSensor::ReceiveFrame(uint8_t* header, std::string* payload) {
    if (m_link.Receive(header, kFrameHeaderSize) != kFrameHeaderSize) {
        m_lastError = m_link.LastError();
        return false;
    }
    FrameHeader decoded = DecodeHeader(header);
    if (decoded.marker != kFrameMarker || decoded.length > uint32_t(kMaxPayload)) {
        Fail(decoded.marker != kFrameMarker ? kErrInvalid : kErrTooLarge);
        LoseConnection();
        return false;
    }
    std::vector<uint8_t> bytes(decoded.length);
    if (decoded.length > 0 && m_link.Receive(bytes.data(), int(bytes.size())) != int(bytes.size())) {
        m_lastError = m_link.LastError();
        return false;
    }
    if (decoded.flags & kFlagCompressed) {
        std::vector<uint8_t> expanded(kMaxPayload);
        size_t size = expanded.size();
        if (!UncompressBuffer(expanded.data(), &size, bytes.data(), bytes.size())) {
            Fail(kErrTooLarge);
            LoseConnection();
            return false;
        }
        expanded.resize(size);
        bytes.swap(expanded);
        decoded.flags = uint16_t(decoded.flags & ~kFlagCompressed);
        decoded.length = uint32_t(bytes.size());
        EncodeHeader(decoded, header);
    }
    payload->assign(bytes.begin(), bytes.end());
    return true;
}

void AttachVexaCommSensor(ISensorObject& sensor) {
    sensor.SetCommSensor(std::make_unique<VexaCommSensor>(sensor));
}
