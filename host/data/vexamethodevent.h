// SPDX-License-Identifier: Apache-2.0
#pragma once
// One row of a method's event table: at `time` milliseconds after the method starts, the instrument's
// valves go to `valveState`.
#include <cstdint>

// The valve states of the instrument. The run-time rule of a method reads three of them: an inject
// starts the run, a direct start starts it when no inject came before, and the end ends it.
enum VexaValveState : int {
    kValveStandby = 0,
    kValveSampleFlow = 1,
    kValveSampleLoop = 2,
    kValveConcentratorLoad = 3,
    kValveConcentratorDry = 4,
    kValveConcentratorHeat = 5,
    kValveInject = 6,
    kValveDirectStart = 7,
    kValveBackflush = 8,
    kValveBakeout = 9,
    kValveVent = 10,
    kValveCoolDown = 11,
    kValveEnd = 12,
};
inline constexpr int kValveStateCount = 13;

class VexaMethodEvent {
public:
    VexaMethodEvent() = default;
    VexaMethodEvent(int64_t timeMs, int valveState) : m_time(timeMs), m_valveState(valveState) {}

    int64_t getTime() const { return m_time; } // milliseconds from the method's start
    int getValveState() const { return m_valveState; }
    bool operator==(const VexaMethodEvent&) const = default;

    // "Inject", "End", ...; "Unknown" for a state outside the enumeration.
    static const wchar_t* ValveStateName(int valveState);

private:
    int64_t m_time = 0;
    int m_valveState = kValveStandby;
};
