// SPDX-License-Identifier: Apache-2.0
#pragma once
// Folder operations on a connected instrument over the sensor object's own link: listing, making,
// renaming and removing folders, deleting files, describing one file and running a command. Each
// operation is one request answered by a status reply or by data frames.
//
// The object holds a full frame buffer and a decompression scratch area (about 128 KiB): create it on
// the heap.
//
// Thread rule: one thread at a time; each send and receive holds the sensor's link lock for that call
// only.
#include "fileinfo.h"
#include "linkframe.h"
#include "sensorref.h"

#include <cstdint>
#include <string>

class VEXASensorObject;

// One directory record on the wire: 1,104 bytes, of which the last 60 are not read.
inline constexpr int kDirectoryRecordSize = 1104;
inline constexpr int kRecordNameSize = 1024;
// Offset of the preview length in a describe answer; the preview bytes follow it.
inline constexpr int kPreviewLengthOffset = 1104;
inline constexpr int kPreviewOffset = 1108;

class VXSFileInfoImpl : public FileInfoImpl {
public:
    // Takes a reference on the sensor object serving `host`, when there is one.
    explicit VXSFileInfoImpl(const std::wstring& host);
    ~VXSFileInfoImpl() override;
    VXSFileInfoImpl(const VXSFileInfoImpl&) = delete;
    VXSFileInfoImpl& operator=(const VXSFileInfoImpl&) = delete;

    // A sensor is held and its link socket is open.
    bool HasLink() const;

    bool ReadSensorDir(const std::wstring& folder, std::vector<FileInfo>& entries,
                       const std::wstring& pattern, uint32_t option) override;
    bool MkDir(const std::wstring& path) override;
    bool Rename(const std::wstring& oldPath, const std::wstring& newPath) override;
    bool RmDir(const std::wstring& path, bool recursive) override;
    bool Delete(const std::wstring& path) override;
    bool RunCommand(const std::wstring& command, std::wstring& output, int64_t timeoutUs) override;
    bool GetFileInfo(const std::wstring& path, FileInfo* entry, void* preview, int* previewSize) override;
    int GetError() const override { return m_error; }
    // The instrument's message of its last error reply (with the status when GetError does not carry
    // it: a refused delete, rename or make-folder leaves the error unchanged).
    std::wstring GetErrorText() const override;
    // The status word of the last reply that was not 0 (or 0), and the message that came with it.
    uint32_t LastReplyStatus() const override { return m_replyStatus; }
    std::wstring LastReplyText() const override { return m_replyText; }

    // Bytes one answer may take on the link, about 120,000 directory records: a listing that runs past
    // it is a lie or never ends. The operation fails with 34 and the link is closed, since the rest of
    // the answer can no longer be told from the next one.
    static constexpr uint64_t kMaxAnswerBytes = uint64_t(128) << 20;

    // The id the next request will use (module-wide counter, apart from the file transfer ids).
    static uint32_t PeekNextRequestId();
    // Seconds of the wire into the host's microseconds, rounded away from the truncation toward zero.
    static int64_t SecondsToMicroseconds(int32_t seconds);
    // One record into an entry: name, size, the three times in record order, folder flag.
    static FileInfo DecodeRecord(const uint8_t* record);

private:
    bool SendRequest(uint32_t command, uint16_t flags, const std::string& first, const std::string& second,
                     uint32_t extra, uint32_t* id);
    bool StatusCommand(uint32_t command, uint16_t flags, const std::wstring& first,
                       const std::wstring& second);
    // Receives exactly `count` bytes; on failure the error becomes the link's.
    bool Receive(uint8_t* buffer, int count);
    bool WaitForStatus();
    bool WaitForData(uint32_t id);
    void NoteReply(uint32_t status, const uint8_t* text, uint32_t size);
    void StartOperation();
    bool Overrun(uint32_t payloadLength);

    int m_error = 0;
    uint32_t m_replyStatus = 0;
    std::wstring m_replyText;
    SensorRef<VEXASensorObject> m_sensor;
    FrameHeader m_header;
    bool m_endOfData = false;
    bool m_linkFailed = false;
    uint64_t m_answerBytes = 0; // received for the operation in progress, headers included
    uint8_t m_frame[kFrameHeaderSize + kMaxPayload];
    uint8_t m_scratch[kMaxPayload];
};
