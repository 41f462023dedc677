// SPDX-License-Identifier: Apache-2.0
#pragma once
// A real FTP server (pyftpdlib, ftpserver.py beside this file) on a fresh loopback address, port 21,
// serving a temporary folder as the home of one account. Free of gtest so the benchmark can use it.
#include <string>

class FtpServerProcess {
public:
    FtpServerProcess() = default;
    ~FtpServerProcess();
    FtpServerProcess(const FtpServerProcess&) = delete;
    FtpServerProcess& operator=(const FtpServerProcess&) = delete;

    // Starts the server for `user` (empty password) with `home` as its root and waits, for at most
    // 15 s, until it listens. False with the reason in `whyNot` (no python3 with pyftpdlib, port 21 not
    // allowed, ...); `skippable` is true when the reason is the machine's, not the code under test's.
    // `address` picks the loopback address (for example a simulator's, so that the link and FTP serve
    // the same host); empty: a fresh one.
    bool Start(const std::string& home, const std::string& user, std::string* whyNot, bool* skippable,
               const std::string& address = {});
    const std::string& address() const { return m_address; }
    std::wstring host() const { return std::wstring(m_address.begin(), m_address.end()); }

    // SIGKILL: the server vanishes mid-whatever, its sockets closed by the kernel.
    void Kill();
    // SIGSTOP / SIGCONT: the server stays connected but answers nothing.
    void Freeze();
    void Thaw();

private:
    std::string m_address;
    int m_pid = -1;
};
