// SPDX-License-Identifier: Apache-2.0
#pragma once
// SIGINT turns into a cancel of the running transfer for as long as a guard lives. Guards nest; the
// previous handler comes back when the last one goes.
class InterruptGuard {
public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    static bool Interrupted();
};
