// SPDX-License-Identifier: Apache-2.0
#pragma once
// One counted reference on a sensor object, released when the holder goes: the sensor lives at least as
// long as the holder, whoever else drops theirs meanwhile. Move-only; not thread-safe itself (the
// sensor's count is).
#include "sensorobject.h"

#include <utility>

template <class T = ISensorObject> class SensorRef {
public:
    SensorRef() = default;
    SensorRef(const SensorRef&) = delete;
    SensorRef& operator=(const SensorRef&) = delete;
    SensorRef(SensorRef&& other) noexcept : m_sensor(std::exchange(other.m_sensor, nullptr)) {}
    SensorRef& operator=(SensorRef&& other) noexcept {
        if (this != &other)
            Reset(std::exchange(other.m_sensor, nullptr));
        return *this;
    }
    ~SensorRef() { Reset(); }

    // Takes over a reference the caller already holds (a new object, SelectAndRef).
    static SensorRef Adopt(T* sensor) { return SensorRef(sensor); }
    // Takes a reference of its own.
    static SensorRef Share(T* sensor) {
        if (sensor)
            sensor->IncRef();
        return SensorRef(sensor);
    }
    // Takes over an object's reference when it is a T; otherwise releases it and holds nothing.
    static SensorRef AdoptIf(ISensorObject* sensor) {
        T* typed = dynamic_cast<T*>(sensor);
        if (sensor && !typed)
            sensor->DecRef();
        return SensorRef(typed);
    }

    // Drops the reference held (the sensor is deleted when it was the last) and holds `sensor`'s.
    void Reset(T* sensor = nullptr) {
        T* old = std::exchange(m_sensor, sensor);
        if (old)
            old->DecRef();
    }

    T* get() const { return m_sensor; }
    T* operator->() const { return m_sensor; }
    T& operator*() const { return *m_sensor; }
    explicit operator bool() const { return m_sensor != nullptr; }

private:
    explicit SensorRef(T* sensor) : m_sensor(sensor) {}

    T* m_sensor = nullptr;
};
