#include "wizardmode.h"

#include "registry.h"

VexaWizardMode GetWizardMode() {
    return CPXRegistry::Instance().GetInt(L"Method", L"WizardMode", kWizardBasic) == kWizardExpert
               ? kWizardExpert
               : kWizardBasic;
}
