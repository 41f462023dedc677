// SPDX-License-Identifier: Apache-2.0
#pragma once
// One FTP control connection through libcurl, used by one thread at a time (the copy worker or the
// user-interface thread, never both at once).
//
// The easy handle carries the instrument's account (user "qord", empty password), active transfers
// and the time limits; a multi handle runs its requests in slices, so that a caller can stream a file:
// Start() a request, DriveUntil() a condition that the caller's data callbacks make true, and Stop()
// it. Requests run one after the other on the same connection, which libcurl keeps open between them
// (together with its current folder).
//
// Every wait is bounded: connecting (10 s), each server reply (20 s), the server's data connection
// (15 s), and, while a caller waits, the stall limit with no byte or reply moving (FtpStallTimeout).
#include <curl/curl.h>

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

class FtpConnection {
public:
    // `host` is the name to connect to (already mapped through get_actual_host). A host that cannot
    // form an FTP address leaves error 22 and an unusable connection.
    explicit FtpConnection(const std::wstring& host);
    ~FtpConnection();
    FtpConnection(const FtpConnection&) = delete;
    FtpConnection& operator=(const FtpConnection&) = delete;

    bool Usable() const { return m_easy != nullptr && m_multi != nullptr && !m_baseUrl.empty(); }
    // For the request's own options (data callbacks, upload, quote commands). Valid while Usable().
    CURL* Easy() const { return m_easy; }

    // Aims the next request at `file` in `folder` (the folder itself when `file` is empty); an empty
    // folder is the login folder. False with error 22 for text that cannot travel in an FTP command.
    bool SetTarget(const std::wstring& folder, const std::wstring& file);

    // Runs a request that moves no file data (size query, quote commands) to its end.
    bool Run();
    // Starts a streaming request; its data callbacks move the bytes while the caller drives it.
    bool Start();
    // Drives the running request until `ready` holds or the request ends; false once it has failed.
    bool DriveUntil(const std::function<bool()>& ready);
    // One step that never waits: lets libcurl send or receive what it can right now.
    void Step();
    // Lets a transfer that a data callback paused go on.
    void Resume();
    // Ends the request; an unfinished transfer is abandoned and its connection closed.
    void Stop();
    bool Running() const { return m_running; }
    // Whether the last request failed (its error is kept).
    bool Failed() const { return m_failed; }
    CURLcode Result() const { return m_result; }
    // Data callbacks call this whenever bytes move; it restarts the stall limit.
    void NoteProgress();

    int Error() const { return m_error; }
    const std::wstring& ErrorText() const { return m_errorText; }
    void SetError(int code, std::wstring text);
    // The last command sent to the server ("SIZE run1.vxs"; a password is never kept).
    const std::string& LastCommand() const { return m_lastCommand; }

private:
    static int OnDebug(CURL* easy, curl_infotype type, char* data, size_t size, void* self);
    void OnCommand(std::string_view line);
    void OnReply(std::string_view line);
    void CollectResults();
    void Finish(CURLcode result);
    void RecordFailure(CURLcode result);

    CURL* m_easy = nullptr;
    CURLM* m_multi = nullptr;
    std::string m_baseUrl;
    bool m_running = false;
    bool m_failed = false;
    CURLcode m_result = CURLE_OK;
    std::chrono::steady_clock::time_point m_lastProgress;
    char m_curlMessage[CURL_ERROR_SIZE] = {};
    std::string m_lastCommand;
    int m_replyCode = 0; // final reply to the last command, 0 before it arrives
    std::string m_replyText;
    int m_error = 0;
    std::wstring m_errorText;
};
