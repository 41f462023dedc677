// SPDX-License-Identifier: Apache-2.0
#include "nofocusbutton.h"

CPXNoFocusButton::CPXNoFocusButton(QWidget* parent) : QPushButton(parent) {
    setFocusPolicy(Qt::NoFocus);
    setAutoDefault(false);
    setDefault(false);
}

CPXNoFocusButton::CPXNoFocusButton(const QIcon& icon, QWidget* parent) : CPXNoFocusButton(parent) {
    SetIcon(icon);
}

void CPXNoFocusButton::SetIcon(const QIcon& icon) {
    setIcon(icon);
    setIconSize(QSize(16, 16));
}
