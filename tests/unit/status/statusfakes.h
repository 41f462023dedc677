#pragma once
// Test doubles for the instrument's command channel and for a sensor that can be put on line
// without a network.
#include "commsensor.h"
#include "sensorobject.h"

#include <functional>
#include <string>
#include <vector>

// A channel 0 that records every command and answers through a script.
class FakeChannel : public ICommSensor, public IChannel {
public:
    // Returns true with *answer, or false with *error (and *answer as the instrument's message).
    using Script = std::function<bool(const std::wstring& command, std::wstring* answer, int* error)>;

    explicit FakeChannel(Script script = {}) : m_script(std::move(script)) {}

    IChannel* GetChannel(int index) override { return index == 0 ? this : nullptr; }
    bool Open() override { return true; }
    void Close() override {}

    bool Read(uint32_t id, void* buffer, uint32_t size, uint32_t index) override;
    bool Write(uint32_t, const void*, uint32_t, uint32_t) override { return false; }
    bool Command(const std::wstring& command, std::wstring* answer, int* error) override;
    bool IsOpen() const override { return true; }

    std::vector<std::wstring> commands;
    // Read(): the bytes to hand back, or a refusal when `readRefused`.
    std::vector<uint8_t> readBytes;
    bool readRefused = false;
    std::vector<uint32_t> readIds;

private:
    Script m_script;
};

// A sensor whose link is a flag, so it goes on line without an instrument; counts device look-ups.
class OfflineCapableSensor : public ISensorObject {
public:
    explicit OfflineCapableSensor(const std::wstring& host) : ISensorObject(nullptr, ISensorAddress(host)) {}
    void Connect(bool open) override { m_linkOpen = open; }
    bool IsLinkOpen() const override { return m_linkOpen; }
    IDevice& GetDevice(const std::wstring& name) override {
        ++deviceLookups;
        return ISensorObject::GetDevice(name);
    }
    int deviceLookups = 0;

private:
    bool m_linkOpen = false;
};
