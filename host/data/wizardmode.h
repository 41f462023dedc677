// SPDX-License-Identifier: Apache-2.0
#pragma once
// The method editor's mode, a setting (Method/WizardMode): basic shows the method's main settings,
// expert adds the temperature programme, the mass range and the event table.
enum VexaWizardMode : int { kWizardBasic = 0, kWizardExpert = 1 };

// The configured mode; anything but 1 reads as basic.
VexaWizardMode GetWizardMode();
