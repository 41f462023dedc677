// SPDX-License-Identifier: Apache-2.0
#pragma once
// An open file on a connected instrument, reached over the sensor object's own link. One direction per
// open: reading streams the instrument's data frames in, writing sends data frames of up to 65,536
// bytes and the last one at close. The outcome of the open is GetError().
//
// The object holds its frame buffer (header and a full payload) and its decompression scratch area,
// about 128 KiB: create it on the heap.
//
// A file goes through one state at a time (see State). A read that ends before the file does leaves the
// instrument's remaining frames on the link: a short remainder is read off and dropped, a long one is
// cut by reopening the link, which is quicker than receiving it on a slow field link.
//
// Thread rule: used by one thread at a time (the user-interface thread or a copy worker). Each send
// and receive holds the sensor's link lock for that call only.
#include "linkframe.h"
#include "sensorref.h"
#include "stdiofile.h"

#include <cstdint>
#include <string>

class VEXASensorObject;

class VXSStdioFileImpl : public StdioFileImpl {
public:
    // Opens `path` on the instrument `host` with an fopen-style `mode`: "r" or "w" followed by any of
    // "+", "b", "t", "z". A path may keep an "@HOST:" prefix.
    VXSStdioFileImpl(const std::wstring& host, const std::wstring& path, const std::wstring& mode);
    ~VXSStdioFileImpl() override;
    VXSStdioFileImpl(const VXSStdioFileImpl&) = delete;
    VXSStdioFileImpl& operator=(const VXSStdioFileImpl&) = delete;

    int Read(void* buffer, int count) override;
    int Write(const void* buffer, int count) override;
    bool ReadString(std::wstring& line) override;
    int WriteString(const std::wstring& text) override;
    int GetError() override { return m_error; }
    int Tell() override { return -1; }
    void Seek(int, int) override {}
    int GetLength() override { return m_fileLength; }
    // The message of the instrument's last error reply for this file.
    std::wstring GetErrorText() override { return m_replyText; }
    const wchar_t* TransportName() const override { return L"link"; }

    // Sends what is left and lets go of the sensor; the destructor does it when not done before. The
    // module itself ignores the result; the host's StdioFile::Close reports whether the last frame left.
    bool Close() override;

    enum class State {
        kOpening,   // the open request is on its way; nothing is known of the file yet
        kStreaming, // reading: data frames follow on the link; writing: data frames may be sent
        kEnded,     // reading: the last data frame arrived; the buffer may still hold bytes
        kFailed,    // a frame, a send or the instrument failed the file: reads and writes fail
        kClosed,    // nothing more happens; the sensor is let go
    };
    State GetState() const { return m_state; }

    bool IsTextMode() const { return m_textMode; }
    bool IsCompressedMode() const { return m_compressedMode; }
    uint32_t TransferId() const { return m_transferId; }
    // The id the next open will use (module-wide counter).
    static uint32_t PeekNextTransferId();

    // Time given to the instrument after each file before the next request.
    static constexpr uint32_t kCloseWaitMs = 500;
    // Bytes an instrument may send for one file beyond its announced length (frame headers, replies
    // that are skipped). A stream that runs past this is a lie or never ends: the read fails with
    // EPROTO and the link is closed, as its byte stream can no longer be followed.
    static constexpr uint64_t kStreamSlack = 1 << 20;
    // Up to this many bytes left of a file closed early are read off the link; beyond it the link is
    // reopened instead.
    static constexpr int64_t kDrainLimitBytes = 4 * int64_t(kMaxPayload);

private:
    bool ParseMode(const std::wstring& mode);
    bool FetchData(uint32_t transferId);
    bool AcceptData();
    bool ReceiveFrame();
    void TakeLinkError();
    void ReleaseSensor();
    // Leaves the link ready for the next request while frames of this file are still coming: the
    // remainder is read off or the link reopened. `inStep`: the link is at a frame boundary.
    void EndStream(bool inStep);
    void DrainRead();
    bool SendBuffer();
    void ResetDataHeader();

    int m_error = 0;
    std::wstring m_replyText;
    SensorRef<VEXASensorObject> m_sensor;
    FrameHeader m_header;
    State m_state = State::kOpening;
    int m_readPos = 0;
    int m_fileLength = 0;
    int64_t m_received = 0; // file bytes that arrived (expanded), to judge what a cut leaves behind
    bool m_openForReading = true;
    bool m_textMode = false;
    bool m_compressedMode = false;
    uint64_t m_streamBytes = 0; // every byte received for this file, headers included
    uint32_t m_transferId = 0;
    // Header bytes directly followed by the payload, so a data frame leaves in one send.
    uint8_t m_frame[kFrameHeaderSize + kMaxPayload];
    uint8_t m_scratch[kMaxPayload];
};
