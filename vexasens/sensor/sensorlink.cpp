// SPDX-License-Identifier: Apache-2.0
#include "sensorlink.h"

#include "linkframe.h"
#include "pumpwait.h"
#include "sensoraddress.h"
#include "winsockerror.h"

namespace {

constexpr uint32_t kSliceMs = 100;

} // namespace

void BuildHelloFrame(uint8_t out[42]) {
    FrameHeader h;
    h.kind = kFrameHello;
    h.flags = kFlagHello;
    h.length = 10;
    EncodeHeader(h, out);
    PutU32(out + 32, 512);
    PutU32(out + 36, 0);
    PutU16(out + 40, 0);
}

SensorLink::SensorLink(std::function<void()> onTimeout) : m_onTimeout(std::move(onTimeout)) {}

SensorLink::~SensorLink() {
    std::lock_guard lock(m_lock);
    Close();
}

void SensorLink::Open(const std::wstring& host, uint16_t port) {
    std::unique_lock lock(m_lock);
    m_lastError = 0;
    if (m_socket != kInvalidSocket)
        Close();

    uint32_t address = get_inet_addr(host);
    if (address == 0) {
        m_lastError = kErrInvalid;
        return;
    }
    LinkSocket s = OpenStreamSocket();
    if (s == kInvalidSocket) {
        m_lastError = LastSocketError();
        return;
    }
    {
        std::lock_guard handle(m_handleLock);
        m_socket = s;
    }

    if (const int error = StartConnect(s, address, port); error != 0) {
        if (!IsRetryableSocketError(error)) {
            m_lastError = error;
            Close();
            return;
        }
        // Writability alone counts as success: a refused connection shows up at the hello's send.
        uint32_t start = TickCount();
        int error2 = 0;
        for (;;) {
            PumpWaitSocket(m_socket, true, int(kSliceMs));
            if (m_socket == kInvalidSocket || m_interrupted) { // closed by a handler or another thread
                error2 = kWsaNotConn;
                break;
            }
            int ready = PollWritableNow(m_socket);
            if (ready < 0)
                error2 = LastSocketError();
            else if (ready > 0)
                break;
            if (TickCount() - start > kConnectLimitMs)
                error2 = kWsaTimedOut;
            if (error2 != 0)
                break;
        }
        if (error2 != 0) {
            m_lastError = error2;
            Close();
            return;
        }
    }
    lock.unlock();

    uint8_t hello[42];
    BuildHelloFrame(hello);

    // The hello goes out as any send does: a time-out takes the sensor off line, and every failure
    // (including a socket closed meanwhile, 10057) leaves the link closed.
    lock.lock();
    if (Transfer(hello, int(sizeof hello), true) != int(sizeof hello))
        Close();
}

void SensorLink::Close() {
    // Another thread may hold the lock in a wait on a silent instrument for up to three seconds (a
    // status poll, a transfer); ending its wait first lets going off line happen at once.
    Interrupt();
    std::lock_guard lock(m_lock);
    std::lock_guard handle(m_handleLock);
    if (m_socket != kInvalidSocket) {
        CloseSocket(m_socket);
        m_socket = kInvalidSocket;
    }
    m_interrupted = false;
}

// Shutting the socket down wakes a wait on it at once; the flag makes the woken call fail instead of
// reading the shut-down socket's zero bytes until its time limit. The handle lock keeps the socket from
// being closed, and its number reused, under the shutdown.
void SensorLink::Interrupt() {
    std::lock_guard handle(m_handleLock);
    if (m_socket == kInvalidSocket)
        return;
    m_interrupted = true;
    ShutDownSocket(m_socket);
}

bool SensorLink::IsOpen() const {
    std::lock_guard lock(m_lock);
    return m_socket != kInvalidSocket;
}

int SensorLink::LastError() const {
    std::lock_guard lock(m_lock);
    return m_lastError;
}

void SensorLink::SetLastError(int error) {
    std::lock_guard lock(m_lock);
    m_lastError = error;
}

int SensorLink::Receive(void* buffer, int count) {
    return Transfer(buffer, count, false);
}

int SensorLink::Send(const void* buffer, int count) {
    return Transfer(const_cast<void*>(buffer), count, true);
}

// The receive must finish within its limit counted from the start of the call, whatever progress is
// made; a send fails only after its limit passes without any progress.
int SensorLink::Transfer(void* buffer, int count, bool sending) {
    std::lock_guard lock(m_lock);
    if (m_socket == kInvalidSocket) {
        m_lastError = kWsaNotConn;
        return -1;
    }
    if (buffer == nullptr || count < 0) {
        m_lastError = kErrInvalid;
        return -1;
    }
    if (count == 0)
        return 0;

    char* bytes = static_cast<char*>(buffer);
    const uint32_t limit = sending ? kSendLimitMs : kReceiveLimitMs;
    uint32_t clockStart = TickCount();
    int total = 0;
    while (total < count) {
        if (TickCount() - clockStart > limit) {
            m_lastError = kWsaTimedOut;
            if (m_onTimeout)
                m_onTimeout();
            return -1;
        }
        if (m_socket == kInvalidSocket || m_interrupted) { // closed by a handler or another thread
            m_lastError = kWsaNotConn;
            return -1;
        }
        long n = sending ? SendSome(m_socket, bytes + total, count - total)
                         : ReceiveSome(m_socket, bytes + total, count - total);
        if (n < 0) {
            int error = LastSocketError();
            if (!IsRetryableSocketError(error)) {
                m_lastError = error;
                return -1;
            }
            PumpWaitSocket(m_socket, sending, int(kSliceMs));
        } else if (n == 0) {
            // A closed peer reads as zero bytes again and again: wait the full slice so it cannot spin.
            if (!m_interrupted)
                PumpWait(kSliceMs);
        } else {
            total += int(n);
            if (sending)
                clockStart = TickCount();
        }
    }
    return total;
}
