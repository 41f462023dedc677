#include "sensorlink.h"

#include "linkframe.h"
#include "pumpwait.h"
#include "sensoraddress.h"
#include "winsockerror.h"

#include <cerrno>

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace {

#ifdef _WIN32
constexpr int kSendFlags = 0;
void CloseSocketHandle(LinkSocket s) {
    closesocket(s);
}
void ShutDownSocket(LinkSocket s) {
    shutdown(s, SD_BOTH);
}
bool MakeNonBlocking(LinkSocket s) {
    u_long on = 1;
    return ioctlsocket(s, FIONBIO, &on) == 0;
}
bool WouldBlock(int error) {
    return error == kWsaWouldBlock;
}
#else
constexpr int kSendFlags = MSG_NOSIGNAL; // a closed peer must give EPIPE, not kill the process
void CloseSocketHandle(LinkSocket s) {
    ::close(s);
}
void ShutDownSocket(LinkSocket s) {
    ::shutdown(s, SHUT_RDWR);
}
bool MakeNonBlocking(LinkSocket s) {
    int flags = fcntl(s, F_GETFL, 0);
    fcntl(s, F_SETFD, FD_CLOEXEC);
    return flags >= 0 && fcntl(s, F_SETFL, flags | O_NONBLOCK) == 0;
}
// EINTR is retried like a would-block result.
bool WouldBlock(int error) {
    return error == kWsaWouldBlock || error == EINTR;
}
#endif

// Zero-time-out readiness test of the connect poll ("select with the socket in the write set only").
// Returns 1 writable, 0 not yet, -1 failure.
int PollWritable(LinkSocket s) {
#ifdef _WIN32
    fd_set writeSet;
    FD_ZERO(&writeSet);
    FD_SET(s, &writeSet);
    timeval zero{0, 0};
    int r = select(0, nullptr, &writeSet, nullptr, &zero);
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
#else
    pollfd p{s, POLLOUT, 0};
    int r = poll(&p, 1, 0);
    if (r < 0)
        return errno == EINTR ? 0 : -1;
    return (r > 0 && (p.revents & (POLLOUT | POLLERR | POLLHUP))) ? 1 : 0;
#endif
}

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
    LinkSocket s = ::socket(AF_INET, SOCK_STREAM, 0);
    if (s == kInvalidSocket) {
        m_lastError = LastSocketError();
        return;
    }
    {
        std::lock_guard handle(m_handleLock);
        m_socket = s;
    }
    MakeNonBlocking(s);

    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_port = htons(port);
    sa.sin_addr.s_addr = address;
    if (::connect(s, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0) {
        int error = LastSocketError();
#ifndef _WIN32
        if (errno == EINPROGRESS)
            error = kWsaWouldBlock;
#endif
        if (!WouldBlock(error)) {
            m_lastError = error;
            Close();
            return;
        }
        // Writability alone counts as success: a refused connection shows up at the hello's send.
        uint32_t start = TickCount();
        int error2 = 0;
        for (;;) {
            PumpWaitSocket(intptr_t(m_socket), true, int(kSliceMs));
            if (m_socket == kInvalidSocket || m_interrupted) { // closed by a handler or another thread
                error2 = kWsaNotConn;
                break;
            }
            int ready = PollWritable(m_socket);
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
        CloseSocketHandle(m_socket);
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
        long n = sending ? ::send(m_socket, bytes + total, count - total, kSendFlags)
                         : ::recv(m_socket, bytes + total, count - total, 0);
        if (n < 0) {
            int error = LastSocketError();
            if (!WouldBlock(error)) {
                m_lastError = error;
                return -1;
            }
            PumpWaitSocket(intptr_t(m_socket), sending, int(kSliceMs));
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
