// SPDX-License-Identifier: Apache-2.0
#pragma once
// The host's view of a sensor's state; GetSensorState() == kSensorOnline (1) means on line.
enum ISensorState : int {
    kSensorOffline = 0,
    kSensorOnline = 1,
    kSensorConnecting = 3,
};
