#include "simserver.h"

#include <arpa/inet.h>
#include <cerrno>
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
    for (;;) {
        pollfd watched[2] = {{m_listenFd, POLLIN, 0}, {wakeFd, POLLIN, 0}};
        const int ready = ::poll(watched, 2, 1000);
        if (ready < 0 && errno != EINTR)
            break;
        if (watched[1].revents)
            break;
        if (ready > 0 && (watched[0].revents & POLLIN))
            Accept();
        ReapFinished();
    }
    StopAll();
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
