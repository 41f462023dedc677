// SPDX-License-Identifier: Apache-2.0
#pragma once
// The VEXA sensor that the link fuzz targets talk through: one for the whole session, on line over the
// scripted link (scriptedlink.h). A run that times out takes it off line; the next run takes it on line
// again, as the host's timer would.
#include <string>

class VEXASensorObject;

inline constexpr const wchar_t* kFuzzHost = L"127.0.0.77";

// The sensor, on line, with the link's error cleared.
VEXASensorObject& OnlineFuzzSensor();

// Prefix of instrument names on the fuzz sensor: "@127.0.0.77:".
std::wstring FuzzRemoteName(const std::wstring& path);
