// SPDX-License-Identifier: Apache-2.0
#pragma once
// Listens on the instrument's port and serves each accepted connection on a thread of its own.
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "simconnection.h"

class SimServer {
public:
    explicit SimServer(const SimServices& services);
    ~SimServer();
    SimServer(const SimServer&) = delete;
    SimServer& operator=(const SimServer&) = delete;

    // Binds and listens; false with the reason (the error number and its meaning) on failure.
    bool Listen(const std::string& address, std::uint16_t port, std::string* problem);
    // Accepts connections until `wakeFd` becomes readable (the signal handler writes to it), then
    // ends every connection and waits for their threads. During an outage of the fault plan the port
    // is closed (connects are refused) and every connection ended.
    void Serve(int wakeFd);

private:
    struct Worker {
        std::shared_ptr<SimConnection> connection;
        std::thread thread;
        std::shared_ptr<bool> done;
    };

    void Accept();
    bool Relisten();
    void ReapFinished();
    void StopAll();

    SimServices m_services;
    int m_listenFd = -1;
    std::string m_address;
    std::uint16_t m_port = 0;
    int m_nextId = 1;
    std::mutex m_mutex; // guards the `done` flags
    std::list<Worker> m_workers;
};
