// SPDX-License-Identifier: Apache-2.0
#include "rawlinkclient.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

std::string ReceivedFrame::message() const {
    return payload.size() > 4 ? std::string(payload.begin() + 4, payload.end()) : std::string();
}

RawLinkClient::RawLinkClient(const std::string& address, int timeoutMs) {
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_port = htons(4840);
    if (::inet_pton(AF_INET, address.c_str(), &target.sin_addr) != 1)
        return;
    m_fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    timeval timeout{timeoutMs / 1000, (timeoutMs % 1000) * 1000};
    ::setsockopt(m_fd, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    ::setsockopt(m_fd, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout);
    if (::connect(m_fd, reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0) {
        ::close(m_fd);
        m_fd = -1;
    }
}

RawLinkClient::~RawLinkClient() {
    if (m_fd >= 0)
        ::close(m_fd);
}

bool RawLinkClient::SendRaw(const Bytes& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n = ::send(m_fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n <= 0)
            return false;
        sent += static_cast<std::size_t>(n);
    }
    return true;
}

bool RawLinkClient::SendHello() {
    return SendRaw({0x0D, 0x0C, 0x0B, 0x0A, 0x04, 0x00, 0x80, 0x00, 0x01, 0x00, 0x00, 0x00, 0x0A, 0x00,
                    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                    0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});
}

bool RawLinkClient::SendRequest(std::uint32_t id, std::uint32_t command, const std::string& first,
                                const std::string& second, std::uint16_t flags, std::uint32_t extra) {
    return SendRaw(ExpectedRequest(command, flags, id, "\"" + first + "\"",
                                   second.empty() ? "" : "\"" + second + "\"", extra));
}

bool RawLinkClient::SendUploadData(std::uint32_t transfer, bool more, const Bytes& payload) {
    return SendRaw(WireFrame(kWireData, more ? kWireMore : 0, transfer, payload, 0, kWireUploadSubArgument));
}

bool RawLinkClient::Upload(std::uint32_t transfer, const std::string& path, const Bytes& content) {
    if (!SendRequest(transfer, kWireOpenWrite, path, {}, kWireOpenWriteFlag))
        return false;
    std::size_t at = 0;
    do {
        const std::size_t count = std::min<std::size_t>(65536, content.size() - at);
        const bool more = at + count < content.size();
        if (!SendUploadData(transfer, more, Bytes(content.begin() + at, content.begin() + at + count)))
            return false;
        at += count;
    } while (at < content.size());
    return true;
}

Bytes RawLinkClient::ReadUpTo(std::size_t count) {
    Bytes bytes(count);
    std::size_t got = 0;
    m_sawClose = false;
    while (got < count) {
        const ssize_t n = ::recv(m_fd, bytes.data() + got, count - got, 0);
        if (n == 0)
            m_sawClose = true;
        if (n <= 0)
            break;
        got += static_cast<std::size_t>(n);
    }
    bytes.resize(got);
    return bytes;
}

std::optional<ReceivedFrame> RawLinkClient::ReadFrame() {
    const Bytes header = ReadUpTo(32);
    if (header.size() != 32)
        return std::nullopt;
    ReceivedFrame frame;
    frame.marker = ReadU32(header, 0);
    frame.kind = static_cast<std::uint16_t>(header[4] | header[5] << 8);
    frame.flags = static_cast<std::uint16_t>(header[6] | header[7] << 8);
    frame.version = ReadU32(header, 8);
    frame.length = ReadU32(header, 12);
    frame.argument = ReadU32(header, 16);
    frame.subArgument = static_cast<std::uint16_t>(header[22] | header[23] << 8);
    frame.extra = ReadU32(header, 28);
    if (frame.length > 65536)
        return std::nullopt;
    frame.payload = ReadUpTo(frame.length);
    if (frame.payload.size() != frame.length)
        return std::nullopt;
    return frame;
}

bool RawLinkClient::PeerClosed() {
    std::uint8_t buffer[4096];
    // Whatever still arrives is skipped; bounded so a peer that keeps sending cannot hold the test.
    for (int i = 0; i < 1024; ++i) {
        const ssize_t n = ::recv(m_fd, buffer, sizeof buffer, 0);
        if (n == 0)
            return true;
        if (n < 0)
            return errno == ECONNRESET;
    }
    return false;
}

bool RawLinkClient::ReadTransfer(std::vector<ReceivedFrame>* frames) {
    frames->clear();
    // Bounded: a transfer in these tests never spans more than a few hundred frames.
    for (int i = 0; i < 1000; ++i) {
        std::optional<ReceivedFrame> frame = ReadFrame();
        if (!frame || frame->kind != kWireData)
            return false;
        frames->push_back(std::move(*frame));
        if (!(frames->back().flags & kWireMore))
            return true;
    }
    return false;
}
