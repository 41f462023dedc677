#pragma once
// An open file on a connected instrument, reached over the sensor object's own link. One direction per
// open: reading streams the instrument's data frames in, writing sends data frames of up to 65,536
// bytes and the last one at close. The outcome of the open is GetError().
//
// The object holds its frame buffer (header and a full payload) and its decompression scratch area,
// about 128 KiB: create it on the heap.
//
// Thread rule: used by one thread at a time (the user-interface thread or a copy worker). Each send
// and receive holds the sensor's link lock for that call only.
#include "linkframe.h"
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

private:
    bool ParseMode(const std::wstring& mode);
    bool FetchData(uint32_t transferId);
    bool ReceiveFrame();
    void DrainRead();
    bool SendBuffer();
    void ResetDataHeader();

    int m_error = 0;
    std::wstring m_replyText;
    VEXASensorObject* m_sensor = nullptr;
    FrameHeader m_header;
    int m_readPos = 0;
    bool m_endOfFile = false;
    int m_fileLength = 0;
    bool m_openForReading = true;
    bool m_textMode = false;
    bool m_compressedMode = false;
    bool m_writeOpened = false; // the open-for-writing request went out whole
    bool m_requestSent = false; // a request reached the link, so the instrument is owed the close wait
    bool m_closed = false;
    bool m_broken = false;      // a frame failed: later reads fail rather than skip a hole
    bool m_streaming = false;   // the first data frame arrived: the rest follows on the link
    bool m_outOfStep = false;   // a frame was cut short: the link's byte stream cannot be trusted
    uint64_t m_streamBytes = 0; // every byte received for this file, headers included
    uint32_t m_transferId = 0;
    // Header bytes directly followed by the payload, so a data frame leaves in one send.
    uint8_t m_frame[kFrameHeaderSize + kMaxPayload];
    uint8_t m_scratch[kMaxPayload];
};
