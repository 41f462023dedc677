// SPDX-License-Identifier: Apache-2.0
// What the Windows platform layer does on its own: Winsock errors as they come, the message-pumping
// wait, the registry as the settings store, and WinINet's errors.
#include "ftperror.h"
#include "netfileimpl.h"
#include "programenvironment.h"
#include "pumpwait.h"
#include "registry.h"
#include "sensorlink.h"
#include "socketcalls.h"
#include "winsockerror.h"

#include <gtest/gtest.h>

#include <winsock2.h>

#include <windows.h>

#include <wininet.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

long long MsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// A listening Winsock socket on a free loopback port.
struct Listener {
    Listener() {
        WSADATA data{};
        WSAStartup(MAKEWORD(2, 2), &data);
        socket = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
        int length = sizeof address;
        getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
        port = ntohs(address.sin_port);
        listen(socket, 1);
    }
    ~Listener() {
        closesocket(socket);
        WSACleanup();
    }
    SOCKET socket = INVALID_SOCKET;
    uint16_t port = 0;
};

int g_userMessages = 0;
LRESULT CALLBACK CountingWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_USER + 1)
        ++g_userMessages;
    return DefWindowProcW(window, message, wParam, lParam);
}

int g_timerCalls = 0;
void CALLBACK CountingTimerProc(HWND, UINT, UINT_PTR, DWORD) {
    ++g_timerCalls;
}

constexpr wchar_t kTestSection[] = L"WindowsPlatformTest";

} // namespace

TEST(WindowsSockets, ErrorsAreWinsockNumbersAsTheyCome) {
    const SocketHandle s = OpenStreamSocket();
    ASSERT_NE(s, kNoSocket);
    CloseSocket(s);
    char byte = 0;
    EXPECT_EQ(ReceiveSome(s, &byte, 1), -1);
    EXPECT_EQ(LastSocketError(), WSAENOTSOCK);
    EXPECT_EQ(LastSocketError(), WSAGetLastError());
    EXPECT_TRUE(IsRetryableSocketError(WSAEWOULDBLOCK));
    EXPECT_FALSE(IsRetryableSocketError(WSAECONNRESET));
}

TEST(WindowsSockets, LinkConnectsAndSendsTheHello) {
    Listener listener;
    SensorLink link;
    link.Open(L"127.0.0.1", listener.port);
    ASSERT_TRUE(link.IsOpen()) << DescribeError(link.LastError()).c_str();
    EXPECT_EQ(link.LastError(), 0);

    SOCKET peer = accept(listener.socket, nullptr, nullptr);
    ASSERT_NE(peer, INVALID_SOCKET);
    unsigned char hello[42] = {};
    int got = 0;
    while (got < 42) {
        const int n = recv(peer, reinterpret_cast<char*>(hello) + got, 42 - got, 0);
        ASSERT_GT(n, 0);
        got += n;
    }
    const unsigned char start[] = {0x0D, 0x0C, 0x0B, 0x0A, 0x04, 0x00, 0x80, 0x00};
    EXPECT_EQ(std::memcmp(hello, start, sizeof start), 0);

    // The peer goes away: a receive ends with Winsock's own number, not a mapped one.
    closesocket(peer);
    char byte = 0;
    const auto start2 = Clock::now();
    EXPECT_EQ(link.Receive(&byte, 1), -1);
    EXPECT_TRUE(link.LastError() == WSAECONNRESET || link.LastError() == WSAETIMEDOUT) << link.LastError();
    EXPECT_LT(MsSince(start2), 10000);
}

TEST(WindowsPumpWait, DispatchesWindowAndThreadMessagesWhileWaiting) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = CountingWindowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"VexaPumpWaitTest";
    RegisterClassW(&windowClass);
    HWND window = CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                  windowClass.hInstance, nullptr);
    ASSERT_NE(window, nullptr);

    g_userMessages = 0;
    g_timerCalls = 0;
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, CountingTimerProc);
    PostThreadMessageW(GetCurrentThreadId(), WM_USER + 2, 0, 0);
    // Posted from another thread while the wait runs: the wait must dispatch it on this thread.
    std::thread poster([window] {
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        PostMessageW(window, WM_USER + 1, 0, 0);
    });
    const auto start = Clock::now();
    PumpWait(300);
    const auto elapsed = MsSince(start);
    poster.join();
    KillTimer(nullptr, timer);

    EXPECT_EQ(g_userMessages, 1);
    EXPECT_GE(g_timerCalls, 3); // the thread timer's procedure runs through DispatchMessageW
    MSG left;
    EXPECT_FALSE(PeekMessageW(&left, nullptr, WM_USER + 2, WM_USER + 2, PM_NOREMOVE)); // removed
    EXPECT_GE(elapsed, 290);
    EXPECT_LT(elapsed, 3000);
    DestroyWindow(window);
}

TEST(WindowsRegistry, SettingsRoundTripThroughTheCurrentUsersKey) {
    const char* saved = std::getenv("VEXA_SETTINGS");
    const std::string previous = saved ? saved : "";
    ASSERT_TRUE(SetProcessEnvironment("VEXA_SETTINGS", ""));
    CPXRegistry& registry = CPXRegistry::Instance();
    EXPECT_EQ(registry.Path(), "HKEY_CURRENT_USER\\Software\\VexaSuite");

    const std::wstring value = L"Grüße, \"quoted\"; a=b";
    ASSERT_TRUE(registry.SetString(kTestSection, L"Text", value));
    ASSERT_TRUE(registry.SetInt(std::wstring(kTestSection) + L"/Nested", L"Days", 42));

    wchar_t stored[256] = {};
    DWORD size = sizeof stored;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"Software\\VexaSuite\\WindowsPlatformTest", L"Text",
                           RRF_RT_REG_SZ, nullptr, stored, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(std::wstring(stored), value);

    CPXRegistry fresh(registry.Path());
    EXPECT_EQ(fresh.GetString(kTestSection, L"Text", L""), value);
    EXPECT_EQ(fresh.GetInt(std::wstring(kTestSection) + L"/Nested", L"Days", 0), 42);

    EXPECT_TRUE(fresh.Remove(kTestSection, L"Text"));
    registry.Reload();
    EXPECT_FALSE(registry.GetString(kTestSection, L"Text").has_value());

    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VexaSuite\\WindowsPlatformTest");
    SetProcessEnvironment("VEXA_SETTINGS", previous);
}

TEST(WindowsFtp, WinInetErrorsKeepTheirNumbersAndMeanings) {
    RegisterErrorMeaningSource(FtpErrorMeaning);
    // Nothing listens for FTP on this loopback address.
    NETFileImpl file(L"127.0.0.1", L"/Data", L"run1.vxs", L"rb");
    EXPECT_EQ(file.GetError(), ERROR_INTERNET_CANNOT_CONNECT);
    EXPECT_EQ(file.GetLength(), -1);
    EXPECT_TRUE(IsFtpUnreachableError(file.GetError()));
    EXPECT_NE(DescribeError(file.GetError()).find(L"could not connect"), std::wstring::npos);

    char buffer[8];
    EXPECT_EQ(file.Read(buffer, 8), 0); // no open file
    EXPECT_EQ(file.GetError(), 9);
    EXPECT_EQ(file.Read(nullptr, 5), -1);
    EXPECT_EQ(file.GetError(), 22);
    EXPECT_EQ(file.Write(nullptr, 5), 0);
    EXPECT_EQ(file.GetError(), 22);

    EXPECT_NE(DescribeError(ERROR_INTERNET_TIMEOUT).find(L"timed out"), std::wstring::npos);
    EXPECT_NE(DescribeError(550).find(L"not found"), std::wstring::npos);
    UnregisterErrorMeaningSource(FtpErrorMeaning);
}
