// SPDX-License-Identifier: Apache-2.0
#pragma once
// A communication sensor whose channel 0 is scripted by the test, so sensor objects can be tested
// without a network. Commands are recorded and answered by the script when one is given, else from
// `answers`; an unknown command fails with `failure`, or answers "ok" while `failure` is 0. Open
// until closed, so a test may use it without taking a sensor on line. Header only: the support
// library itself does not link the host core.
#include "commsensor.h"

#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

class FakeChannel : public ICommSensor, public IChannel {
public:
    // Returns true with *answer, or false with *error (and *answer as the instrument's message).
    using Script = std::function<bool(const std::wstring& command, std::wstring* answer, int* error)>;

    explicit FakeChannel(Script script = {}) : m_script(std::move(script)) {}

    IChannel* GetChannel(int index) override { return index == 0 ? this : nullptr; }
    bool Open() override {
        ++opens;
        open = true;
        return true;
    }
    void Close() override {
        ++closes;
        open = false;
    }
    bool IsOpen() const override { return open; }

    // Read(): the bytes to hand back, or a refusal when `readRefused` or the size differs.
    bool Read(uint32_t id, void* buffer, uint32_t size, uint32_t) override {
        readIds.push_back(id);
        if (readRefused || readBytes.size() != size)
            return false;
        std::memcpy(buffer, readBytes.data(), size);
        return true;
    }
    bool Write(uint32_t, const void*, uint32_t, uint32_t) override { return false; }
    bool Command(const std::wstring& command, std::wstring* answer, int* error) override {
        commands.push_back(command);
        if (duringCommand)
            duringCommand();
        if (m_script)
            return m_script(command, answer, error);
        const auto it = answers.find(command);
        if (it != answers.end() || failure == 0) {
            *answer = it != answers.end() ? it->second : L"ok";
            if (error)
                *error = 0;
            return true;
        }
        if (error)
            *error = failure;
        return false;
    }

    std::vector<std::wstring> commands;
    std::map<std::wstring, std::wstring> answers;
    int failure = 0;
    std::function<void()> duringCommand;
    std::vector<uint8_t> readBytes;
    bool readRefused = false;
    std::vector<uint32_t> readIds;
    bool open = true;
    int opens = 0;
    int closes = 0;

private:
    Script m_script;
};
