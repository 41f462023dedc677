// SPDX-License-Identifier: Apache-2.0
#include "interruptguard.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> g_interrupted{false};
std::atomic<int> g_guards{0};
void (*g_previousHandler)(int) = SIG_DFL;

extern "C" void OnTransferInterrupt(int) {
    g_interrupted = true;
}

} // namespace

InterruptGuard::InterruptGuard() {
    if (g_guards++ == 0) {
        g_interrupted = false;
        g_previousHandler = std::signal(SIGINT, OnTransferInterrupt);
    }
}

InterruptGuard::~InterruptGuard() {
    if (--g_guards == 0)
        std::signal(SIGINT, g_previousHandler);
}

bool InterruptGuard::Interrupted() {
    return g_interrupted.load();
}
