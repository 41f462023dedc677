// SPDX-License-Identifier: Apache-2.0
#include "dialoglauncher.h"

#include <atomic>

namespace {
std::atomic<IVexaDialogLauncher*> g_launcher{nullptr};
}

void SetVexaDialogLauncher(IVexaDialogLauncher* launcher) {
    g_launcher.store(launcher);
}

IVexaDialogLauncher* VexaDialogLauncher() {
    return g_launcher.load();
}

bool IVexaDialogLauncher::EditTextFile(VEXASensorObject&, const std::wstring&) {
    return false;
}
