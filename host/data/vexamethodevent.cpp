// SPDX-License-Identifier: Apache-2.0
#include "vexamethodevent.h"

#include <string>

const wchar_t* VexaMethodEvent::ValveStateName(int valveState) {
    static const wchar_t* const kNames[kValveStateCount] = {L"Standby",
                                                            L"Sample Flow",
                                                            L"Sample Loop",
                                                            L"Concentrator Load",
                                                            L"Concentrator Dry",
                                                            L"Concentrator Heat",
                                                            L"Inject",
                                                            L"Direct Start",
                                                            L"Backflush",
                                                            L"Bakeout",
                                                            L"Vent",
                                                            L"Cool Down",
                                                            L"End"};
    if (valveState >= 0 && valveState < kValveStateCount)
        return kNames[valveState];
    return L"Unknown";
}
