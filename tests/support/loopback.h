// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <string>
// A loopback address that no other test of this run uses (127.x.y.z, never 127.0.0.1), so tests can
// each run a server on the instrument's fixed port 4840.
std::string FreshLoopbackAddress();
