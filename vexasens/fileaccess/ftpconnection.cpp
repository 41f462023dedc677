// SPDX-License-Identifier: Apache-2.0
#include "ftpconnection.h"

#include "ftperror.h"
#include "ftpsession.h"
#include "text.h"

#include <cctype>

namespace {

constexpr long kFtpPort = 21;
constexpr long kConnectTimeoutMs = 10000;
constexpr long kReplyTimeoutSeconds = 20;
constexpr long kDataConnectionTimeoutMs = 15000;
// Longest single wait inside DriveUntil, so the stall limit is checked often.
constexpr int kPollSliceMs = 100;
constexpr std::size_t kMaxReplyText = 400;
constexpr const char* kAgentName = "VEXARON";
constexpr const char* kUserName = "qord";

// libcurl's global state, set up once for the process before the first handle.
void InitCurlOnce() {
    static const CURLcode init = curl_global_init(CURL_GLOBAL_DEFAULT);
    (void)init;
}

size_t DiscardData(char*, size_t size, size_t count, void*) {
    return size * count;
}

// A host name or address that fits into an ftp:// URL as it stands.
bool IsPlainHost(const std::string& host) {
    if (host.empty())
        return false;
    for (unsigned char c : host) {
        if (c <= 0x20 || c == 0x7F || c == '/' || c == '\\' || c == '?' || c == '#' || c == '@' || c == ':' ||
            c == '[' || c == ']' || c == '%')
            return false;
    }
    return true;
}

bool HasControlCharacter(const std::wstring& text) {
    for (wchar_t c : text) {
        if (c == L'\r' || c == L'\n' || c == L'\0')
            return true;
    }
    return false;
}

std::string Escape(CURL* easy, const std::string& text) {
    if (text.empty())
        return {};
    char* escaped = curl_easy_escape(easy, text.data(), static_cast<int>(text.size()));
    if (!escaped)
        return {};
    std::string result(escaped);
    curl_free(escaped);
    return result;
}

} // namespace

FtpConnection::FtpConnection(const std::wstring& host) {
    InitCurlOnce();
    const std::string hostUtf8 = ToUtf8(host);
    if (!IsPlainHost(hostUtf8)) {
        SetError(22, L"not an FTP host name: \"" + host + L"\"");
        return;
    }
    m_easy = curl_easy_init();
    m_multi = curl_multi_init();
    if (!m_easy || !m_multi) {
        SetError(kFtpCurlErrorBase + CURLE_FAILED_INIT, L"the FTP library could not be set up");
        return;
    }
    m_baseUrl = "ftp://" + hostUtf8 + ":" + std::to_string(kFtpPort) + "/";

    curl_easy_setopt(m_easy, CURLOPT_USERAGENT, kAgentName);
    curl_easy_setopt(m_easy, CURLOPT_USERNAME, kUserName);
    curl_easy_setopt(m_easy, CURLOPT_PASSWORD, "");
#if LIBCURL_VERSION_NUM >= 0x075500
    curl_easy_setopt(m_easy, CURLOPT_PROTOCOLS_STR, "ftp");
#else
    curl_easy_setopt(m_easy, CURLOPT_PROTOCOLS, static_cast<long>(CURLPROTO_FTP));
#endif
    // Active transfers from the control connection's own address, as the instrument expects.
    curl_easy_setopt(m_easy, CURLOPT_FTPPORT, "-");
    // One CWD to the whole folder, then the command on the plain file name.
    curl_easy_setopt(m_easy, CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_SINGLECWD));
    curl_easy_setopt(m_easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(m_easy, CURLOPT_CONNECTTIMEOUT_MS, kConnectTimeoutMs);
    curl_easy_setopt(m_easy, CURLOPT_SERVER_RESPONSE_TIMEOUT, kReplyTimeoutSeconds);
    curl_easy_setopt(m_easy, CURLOPT_ACCEPTTIMEOUT_MS, kDataConnectionTimeoutMs);
    curl_easy_setopt(m_easy, CURLOPT_ERRORBUFFER, m_curlMessage);
    curl_easy_setopt(m_easy, CURLOPT_WRITEFUNCTION, DiscardData);
    curl_easy_setopt(m_easy, CURLOPT_HEADERFUNCTION, DiscardData);
    // The debug callback sees every command and reply line: the last ones explain a failure.
    curl_easy_setopt(m_easy, CURLOPT_DEBUGFUNCTION, OnDebug);
    curl_easy_setopt(m_easy, CURLOPT_DEBUGDATA, this);
    curl_easy_setopt(m_easy, CURLOPT_VERBOSE, 1L);
}

FtpConnection::~FtpConnection() {
    Stop();
    if (m_multi)
        curl_multi_cleanup(m_multi);
    if (m_easy)
        curl_easy_cleanup(m_easy);
}

bool FtpConnection::SetTarget(const std::wstring& folder, const std::wstring& file) {
    if (!Usable())
        return false;
    if (HasControlCharacter(folder) || HasControlCharacter(file)) {
        SetError(22, L"an FTP path may not hold a line break");
        return false;
    }
    // libcurl decodes the path and splits it at its last '/': the folder becomes one CWD argument.
    std::string url = m_baseUrl;
    if (!folder.empty())
        url += Escape(m_easy, ToUtf8(folder)) + "/";
    url += Escape(m_easy, ToUtf8(file));
    curl_easy_setopt(m_easy, CURLOPT_URL, url.c_str());
    return true;
}

bool FtpConnection::Run() {
    if (!Start())
        return false;
    DriveUntil([] { return false; });
    return !m_failed;
}

bool FtpConnection::Start() {
    if (!Usable())
        return false;
    Stop();
    m_failed = false;
    m_result = CURLE_OK;
    m_curlMessage[0] = '\0';
    const CURLMcode added = curl_multi_add_handle(m_multi, m_easy);
    if (added != CURLM_OK) {
        m_failed = true;
        m_result = CURLE_FAILED_INIT;
        SetError(kFtpCurlErrorBase + CURLE_FAILED_INIT, FromUtf8(curl_multi_strerror(added)));
        return false;
    }
    m_running = true;
    NoteProgress();
    return true;
}

bool FtpConnection::DriveUntil(const std::function<bool()>& ready) {
    // Only time spent waiting here counts against the stall limit, not the caller's pauses.
    NoteProgress();
    while (m_running && !ready()) {
        int stillRunning = 0;
        const CURLMcode performed = curl_multi_perform(m_multi, &stillRunning);
        if (performed != CURLM_OK) {
            Stop();
            m_failed = true;
            m_result = CURLE_FAILED_INIT;
            SetError(kFtpCurlErrorBase + CURLE_FAILED_INIT, FromUtf8(curl_multi_strerror(performed)));
            break;
        }
        CollectResults();
        if (!m_running || ready())
            break;
        const auto limit = FtpStallTimeout();
        if (std::chrono::steady_clock::now() - m_lastProgress > limit) {
            Stop();
            m_failed = true;
            m_result = CURLE_OPERATION_TIMEDOUT;
            SetError(kFtpCurlErrorBase + CURLE_OPERATION_TIMEDOUT,
                     L"the FTP server sent nothing for " + std::to_wstring(limit.count()) + L" ms");
            break;
        }
        int events = 0;
        curl_multi_poll(m_multi, nullptr, 0, kPollSliceMs, &events);
    }
    return !m_failed;
}

void FtpConnection::Step() {
    if (!m_running)
        return;
    int stillRunning = 0;
    curl_multi_perform(m_multi, &stillRunning);
    CollectResults();
}

void FtpConnection::Resume() {
    if (!m_running)
        return;
    const CURLcode resumed = curl_easy_pause(m_easy, CURLPAUSE_CONT);
    if (resumed != CURLE_OK)
        Finish(resumed);
}

void FtpConnection::Stop() {
    if (!m_running)
        return;
    m_running = false;
    curl_multi_remove_handle(m_multi, m_easy);
}

void FtpConnection::NoteProgress() {
    m_lastProgress = std::chrono::steady_clock::now();
}

void FtpConnection::SetError(int code, std::wstring text) {
    m_error = code;
    m_errorText = std::move(text);
}

void FtpConnection::CollectResults() {
    int queued = 0;
    while (CURLMsg* message = curl_multi_info_read(m_multi, &queued)) {
        if (message->msg == CURLMSG_DONE && message->easy_handle == m_easy)
            Finish(message->data.result);
    }
}

void FtpConnection::Finish(CURLcode result) {
    Stop();
    m_result = result;
    if (result != CURLE_OK) {
        m_failed = true;
        RecordFailure(result);
    }
}

// The server's refusal of the last command when there is one ("550 ..."), else libcurl's own reason.
void FtpConnection::RecordFailure(CURLcode result) {
    if (m_replyCode >= 400 && m_replyCode < 600) {
        std::string text = m_lastCommand.empty() ? m_replyText : m_lastCommand + ": " + m_replyText;
        SetError(m_replyCode, FromUtf8(text));
        return;
    }
    const char* reason = m_curlMessage[0] != '\0' ? m_curlMessage : curl_easy_strerror(result);
    SetError(kFtpCurlErrorBase + static_cast<int>(result), FromUtf8(reason));
}

int FtpConnection::OnDebug(CURL*, curl_infotype type, char* data, size_t size, void* self) {
    if (type != CURLINFO_HEADER_IN && type != CURLINFO_HEADER_OUT)
        return 0;
    auto* connection = static_cast<FtpConnection*>(self);
    std::string_view text(data, size);
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        while (!line.empty() && (line.back() == '\r' || line.back() == '\n'))
            line.remove_suffix(1);
        if (line.empty())
            continue;
        if (type == CURLINFO_HEADER_OUT)
            connection->OnCommand(line);
        else
            connection->OnReply(line);
    }
    connection->NoteProgress();
    return 0;
}

void FtpConnection::OnCommand(std::string_view line) {
    m_lastCommand =
        line.substr(0, 4) == "PASS" ? std::string("PASS") : std::string(line.substr(0, kMaxReplyText));
    m_replyCode = 0;
    m_replyText.clear();
}

void FtpConnection::OnReply(std::string_view line) {
    // Only the last line of a reply ("550 text", not "550-text") carries the final code.
    if (line.size() < 3 || !std::isdigit(static_cast<unsigned char>(line[0])) ||
        !std::isdigit(static_cast<unsigned char>(line[1])) ||
        !std::isdigit(static_cast<unsigned char>(line[2])))
        return;
    if (line.size() > 3 && line[3] != ' ')
        return;
    m_replyCode = (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
    m_replyText = std::string(line.substr(line.size() > 3 ? 4 : 3, kMaxReplyText));
}
