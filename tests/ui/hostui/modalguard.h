// SPDX-License-Identifier: Apache-2.0
#pragma once
// A check that fails inside a dialog's modal run returns from the scheduled action without ending the
// dialog. Declare this guard first in such an action: it ends a dialog that is still open when the
// action is left, so the case fails instead of hanging.
#include "dialog.h"

#include <QScopeGuard>

constexpr int kLeftOpen = -99;

inline auto EndWhenLeft(CDialog_& dialog) {
    return qScopeGuard([&dialog] {
        if (dialog.isVisible() && !dialog.HasEnded())
            dialog.EndDialog(kLeftOpen);
    });
}
