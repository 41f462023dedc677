// SPDX-License-Identifier: Apache-2.0
#pragma once
// The processor time this process has used, in seconds: how a test tells a wait that sleeps from one
// that spins. Not std::clock(), which counts wall time on Windows.
double ProcessCpuSeconds();
