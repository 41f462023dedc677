// SPDX-License-Identifier: Apache-2.0
// The static objects of the loadable module's user interface: the dialog launcher behind the sensor's
// entry points. Compiled into VexaSens.sdll only; the command line has no dialogs.
#include "dialoglauncher.h"
#include "vexadialoglauncher.h"

namespace {

class VexaDialogLauncherRegistration {
public:
    VexaDialogLauncherRegistration() { SetVexaDialogLauncher(&m_launcher); }
    ~VexaDialogLauncherRegistration() {
        if (VexaDialogLauncher() == &m_launcher)
            SetVexaDialogLauncher(nullptr);
    }
    VexaDialogLauncherRegistration(const VexaDialogLauncherRegistration&) = delete;
    VexaDialogLauncherRegistration& operator=(const VexaDialogLauncherRegistration&) = delete;

private:
    CVexaDialogLauncher m_launcher;
};

VexaDialogLauncherRegistration g_dialogLauncher;

} // namespace
