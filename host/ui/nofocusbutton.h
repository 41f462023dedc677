// SPDX-License-Identifier: Apache-2.0
#pragma once
// A small icon button that never takes the keyboard focus, so clicking it leaves the focus (and the
// selection highlight) in the list the user works in.
#include <QIcon>
#include <QPushButton>

class CPXNoFocusButton : public QPushButton {
    Q_OBJECT
public:
    explicit CPXNoFocusButton(QWidget* parent = nullptr);
    explicit CPXNoFocusButton(const QIcon& icon, QWidget* parent = nullptr);

    // Shows the icon at the small-icon size (16 x 16).
    void SetIcon(const QIcon& icon);
};
