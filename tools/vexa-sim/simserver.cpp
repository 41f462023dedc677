// SPDX-License-Identifier: Apache-2.0
#include "simserver.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tracelog.h"

namespace {

std::string ErrnoText(int error) {
    return "error " + std::to_string(error) + " (" + std::strerror(error) + ")";
}

} // namespace

SimServer::SimServer(const SimServices& services) : m_services(services) {}

SimServer::~SimServer() {
    StopAll();
    if (m_listenFd >= 0)
        ::close(m_listenFd);
}

bool SimServer::Listen(const std::string& address, std::uint16_t port, std::string* problem) {
    m_address = address;
    m_port = port;
    sockaddr_in socketAddress{};
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_port = htons(port);
    if (::inet_pton(AF_INET, address.c_str(), &socketAddress.sin_addr) != 1) {
        *problem = "\"" + address + "\" is not an IPv4 address";
        return false;
    }
    m_listenFd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_listenFd < 0) {
        *problem = "cannot create a socket: " + ErrnoText(errno);
        return false;
    }
    const int on = 1;
    ::setsockopt(m_listenFd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(m_listenFd, reinterpret_cast<const sockaddr*>(&socketAddress), sizeof socketAddress) != 0 ||
        ::listen(m_listenFd, SOMAXCONN) != 0) {
        *problem = "cannot listen on " + address + ":" + std::to_string(port) + ": " + ErrnoText(errno);
        ::close(m_listenFd);
        m_listenFd = -1;
        return false;
    }
    return true;
}

void SimServer::Serve(int wakeFd) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    for (;;) {
        const auto sinceStart =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
        std::uint64_t unchangedMs = 0;
        const bool down = m_services.faults.InOutage(static_cast<std::uint64_t>(sinceStart), &unchangedMs);
        if (down && m_listenFd >= 0) {
            m_services.log.Note("outage: every connection closed, new ones refused for " +
                                std::to_string(unchangedMs) + " ms");
            ::close(m_listenFd);
            m_listenFd = -1;
            StopAll();
        } else if (!down && m_listenFd < 0) {
            if (!Relisten())
                break;
            m_services.log.Note("outage over: accepting connections again");
        }
        pollfd watched[2] = {{wakeFd, POLLIN, 0}, {m_listenFd, POLLIN, 0}};
        const int timeout = static_cast<int>(std::min<std::uint64_t>(unchangedMs, 1000));
        const int ready = ::poll(watched, m_listenFd >= 0 ? 2 : 1, timeout);
        if (ready < 0 && errno != EINTR)
            break;
        if (watched[0].revents)
            break;
        if (ready > 0 && m_listenFd >= 0 && (watched[1].revents & POLLIN))
            Accept();
        ReapFinished();
    }
    StopAll();
}

bool SimServer::Relisten() {
    std::string problem;
    if (Listen(m_address, m_port, &problem))
        return true;
    m_services.log.Note("cannot listen again after the outage: " + problem);
    return false;
}

void SimServer::Accept() {
    sockaddr_in peer{};
    socklen_t peerSize = sizeof peer;
    const int fd = ::accept4(m_listenFd, reinterpret_cast<sockaddr*>(&peer), &peerSize, SOCK_CLOEXEC);
    if (fd < 0) {
        if (errno != EINTR && errno != EAGAIN && errno != ECONNABORTED)
            m_services.log.Note("accept failed: " + ErrnoText(errno));
        return;
    }
    const int id = m_nextId++;
    char peerText[INET_ADDRSTRLEN] = "?";
    ::inet_ntop(AF_INET, &peer.sin_addr, peerText, sizeof peerText);
    m_services.log.Note(id, std::string("connection from ") + peerText + ":" +
                                std::to_string(ntohs(peer.sin_port)));

    Worker worker;
    worker.connection = std::make_shared<SimConnection>(fd, id, m_services);
    worker.done = std::make_shared<bool>(false);
    worker.thread = std::thread([this, connection = worker.connection, done = worker.done] {
        connection->Run();
        std::lock_guard<std::mutex> lock(m_mutex);
        *done = true;
    });
    m_workers.push_back(std::move(worker));
}

void SimServer::ReapFinished() {
    for (auto it = m_workers.begin(); it != m_workers.end();) {
        bool done = false;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            done = *it->done;
        }
        if (done) {
            it->thread.join();
            it = m_workers.erase(it);
        } else {
            ++it;
        }
    }
}

void SimServer::StopAll() {
    for (Worker& worker : m_workers)
        worker.connection->Shutdown();
    for (Worker& worker : m_workers)
        worker.thread.join();
    m_workers.clear();
}
