// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's communication sensor. Its channel 0 is a second link connection to the instrument
// (own socket, own lock) that carries only command-8 requests ("run a command"), so that status polls
// and parameter access never interleave with a file transfer on the sensor object's own link.
//
// Parameters travel as command texts: `param get <id> <index> <size>` answers the bytes as hex,
// `param set <id> <index> <hex>` answers "ok". A send or receive time-out on this connection takes the
// whole sensor off line (ISensorObject::Disconnect(0)), as one on the main link does; so does an answer
// that leaves the byte stream out of step. Either happens once the command has let go of this
// connection's lock.
//
// Any thread may call the operations; each command holds the connection's lock for its whole exchange.
#include "commsensor.h"
#include "sensorlink.h"

#include <atomic>
#include <cstdint>
#include <string>

class ISensorObject;

class VexaCommSensor : public ICommSensor, public IChannel {
public:
    // The instrument's time limit for one command, sent in the request's extra word.
    static constexpr uint32_t kCommandTimeoutSeconds = 10;

    // Serves `sensor` (its address gives the host; its Disconnect(0) is called on a time-out).
    explicit VexaCommSensor(ISensorObject& sensor, uint16_t port = kLinkPort);
    ~VexaCommSensor() override;

    // ---- ICommSensor ----
    // Channel 0 is this object; there is no other channel.
    IChannel* GetChannel(int index) override;
    // Connects (and sends the hello); true when the connection is open.
    bool Open() override;
    void Close() override;

    // ---- IChannel ----
    bool Read(uint32_t id, void* buffer, uint32_t size, uint32_t index) override;
    bool Write(uint32_t id, const void* buffer, uint32_t size, uint32_t index) override;
    // Sends the command and reads frames until the answer: the data frames of this request (their
    // payloads joined, UTF-8) or a reply with a non-zero status, which fails with that status in *error
    // and the instrument's message, if any, in *answer. A link failure fails with the link's error.
    bool Command(const std::wstring& command, std::wstring* answer, int* error) override;
    bool IsOpen() const override;

    // The error of the last failed operation (link, instrument status, 22 for a malformed answer).
    int LastError() const override;

private:
    bool Run(const std::string& commandUtf8, std::string* answer, std::string* message, int* error);
    bool Exchange(const std::string& commandUtf8, std::string* answer, std::string* message);
    bool ReceiveFrame(uint8_t* header, std::string* payload);
    void Fail(int error);
    void LoseConnection();

    ISensorObject& m_sensor;
    uint16_t m_port;
    SensorLink m_link;
    int m_lastError = 0;             // guarded by the link's lock
    std::atomic<bool> m_lost{false}; // timed out or out of step: the sensor must go off line
    // An exchange in progress on this thread: a handler dispatched during its pumping wait gets "try
    // again" instead of interleaving its request with the answer being read.
    bool m_inExchange = false; // guarded by the link's lock
};

// Gives a sensor object its communication sensor (a VexaCommSensor on the instrument's port).
void AttachVexaCommSensor(ISensorObject& sensor);
