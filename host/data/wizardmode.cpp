// SPDX-License-Identifier: Apache-2.0
#include "wizardmode.h"

#include "registry.h"

VexaWizardMode GetWizardMode() {
    return CPXRegistry::Instance().GetInt(L"Method", L"WizardMode", kWizardBasic) == kWizardExpert
               ? kWizardExpert
               : kWizardBasic;
}
