// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's side of every link in a fuzz target. What the module receives comes from the
// fuzzer's bytes; what it sends is dropped. This file's .cpp is linked in place of the socket link and
// of the pumping waits, so one run costs neither a connection nor a sleep, and a peer that runs out of
// bytes looks exactly like one that stopped sending: the receive times out and the sensor is taken off
// line.
//
// Ids: the module numbers its requests with counters that grow from run to run, which no stored input
// can know. A received frame header whose argument is the wildcard 0xFFFFFFFF is therefore given the
// id of the last request the module sent; any other argument arrives as it stands.
#include <cstddef>
#include <cstdint>

// The bytes the instrument "sends" from now on (not copied: they must outlive the run).
void SetLinkScript(const uint8_t* data, size_t size);
inline constexpr uint32_t kLastRequestId = 0xFFFFFFFF;

// Bytes of the script not yet received.
size_t LinkScriptLeft();
