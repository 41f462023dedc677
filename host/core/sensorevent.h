// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <cstdint>
#include <string>

// Sensor notification codes.
enum : uint32_t {
    kSensorEventOffline = 2,            // state change: the sensor went off line
    kSensorEventOnline = 6,             // state change: the sensor went on line
    kSensorEventBackup = 0x100131,      // backup finished: the text is the archive name or "aborted"
    kSensorEventMethodEnded = 0x100132, // a method or replay ended on the instrument
};

// What an observer's masks select. Codes below 0x100 are the sensor's state changes; codes from
// 0x100000 up are the instrument's (device) notifications, the rest the sensor's own. Each code is one
// bit of the sensor mask or of the device mask; the high five bits are kept for the suite's other
// sensor types and select nothing here.
enum : uint32_t {
    kEventMaskState = 0x1,        // sensor mask: on line, off line
    kEventMaskProcessEnded = 0x2, // device mask: a method or replay ended
    kEventMaskOther = 0x4,        // either mask: any other notification
    kEventMaskBackup = 0x8,       // device mask: a backup ended
    kEventMaskReserved = 0xF8000000,
};

// One notification: an event code and a text.
struct ISensorEvent {
    uint32_t code = 0;
    std::wstring text;
    std::wstring sensorName;
};
