// SPDX-License-Identifier: Apache-2.0
#pragma once
// Durations as the method grids show them.
#include <cstdint>
#include <string>

// Seconds as "M:SS" (minutes unbounded: 3725 -> "62:05"); a negative span gets a leading '-'.
std::wstring FormatTimeSpan(int64_t seconds);
