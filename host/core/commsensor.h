// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's communication channel (channel 0 of the communication sensor): parameter reads
// and writes and command texts, over a second link connection of its own.
#include <cstdint>
#include <string>

class IChannel {
public:
    virtual ~IChannel() = default;
    // Reads parameter `id` at `index` into `buffer` (`size` bytes); false when declined or failed.
    virtual bool Read(uint32_t id, void* buffer, uint32_t size, uint32_t index) = 0;
    virtual bool Write(uint32_t id, const void* buffer, uint32_t size, uint32_t index) = 0;
    // Runs one command text on the instrument; false with the error number in *error on failure.
    virtual bool Command(const std::wstring& command, std::wstring* answer, int* error) = 0;
    virtual bool IsOpen() const = 0;
};

class ICommSensor {
public:
    virtual ~ICommSensor() = default;
    virtual IChannel* GetChannel(int index) = 0;
    // Opens or closes the channel's connection together with the sensor.
    virtual bool Open() = 0;
    virtual void Close() = 0;
    // The error of the channel's last failed operation (0 when it has none to tell), so that a caller
    // can say why a status or parameter read failed.
    virtual int LastError() const { return 0; }
};
