// SPDX-License-Identifier: Apache-2.0
#pragma once
// An observer that records every event it is sent, from any thread. Header only: the support library
// itself does not link the host core.
#include "sensorobserver.h"

#include <mutex>
#include <vector>

class RecordingObserver : public ISensorObserver {
public:
    void OnSensorEvent(const ISensorEvent& event) override {
        std::lock_guard lock(m_mutex);
        m_events.push_back(event);
    }
    std::vector<ISensorEvent> events() const {
        std::lock_guard lock(m_mutex);
        return m_events;
    }
    std::vector<uint32_t> codes() const {
        std::vector<uint32_t> codes;
        for (const ISensorEvent& event : events())
            codes.push_back(event.code);
        return codes;
    }
    // Whether an event with `code` arrived; its text goes to `text`.
    bool has(uint32_t code, std::wstring* text = nullptr) const {
        for (const ISensorEvent& event : events()) {
            if (event.code == code) {
                if (text)
                    *text = event.text;
                return true;
            }
        }
        return false;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<ISensorEvent> m_events;
};
