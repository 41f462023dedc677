// SPDX-License-Identifier: Apache-2.0
#pragma once
// The pumping wait's dispatcher for a thread that runs a Qt event loop (the UI thread): the link's
// waits dispatch the thread's Qt events between their slices, so windows stay live.
#include "pumpwait.h"

class QtPumpDispatcher : public PumpDispatcher {
public:
    // Blocks until an event arrives for this thread or `ms` pass, dispatching what arrives.
    void WaitForEvents(int ms) override;
    void DispatchPending() override;
};

// Installs a QtPumpDispatcher for the calling thread (once; later calls do nothing).
void InstallQtPumpDispatcher();
