#pragma once
#include <cstdint>
#include <string>

// Sensor notification codes.
enum : uint32_t {
    kSensorEventOffline = 2,            // state change: the sensor went off line
    kSensorEventOnline = 6,             // state change: the sensor went on line
    kSensorEventBackup = 0x100131,      // backup finished: the text is the archive name or "aborted"
};

// One notification: an event code and a text.
struct ISensorEvent {
    uint32_t code = 0;
    std::wstring text;
    std::wstring sensorName;
};
