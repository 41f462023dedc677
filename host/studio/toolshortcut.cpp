// SPDX-License-Identifier: Apache-2.0
#include "toolshortcut.h"

namespace {
// Virtual-key codes of the keys a tool can reasonably be bound to.
constexpr int kVkF1 = 0x70;
constexpr int kVkF24 = 0x87;
constexpr int kVkShift = 0x10;
constexpr int kVkControl = 0x11;
constexpr int kVkMenu = 0x12; // Alt

int QtKey(int virtualKey) {
    if (virtualKey >= kVkF1 && virtualKey <= kVkF24)
        return Qt::Key_F1 + (virtualKey - kVkF1);
    if ((virtualKey >= '0' && virtualKey <= '9') || (virtualKey >= 'A' && virtualKey <= 'Z'))
        return virtualKey; // Qt's codes for digits and letters are their ASCII values, as Windows'
    switch (virtualKey) {
    case 0x08:
        return Qt::Key_Backspace;
    case 0x09:
        return Qt::Key_Tab;
    case 0x0D:
        return Qt::Key_Return;
    case 0x1B:
        return Qt::Key_Escape;
    case 0x20:
        return Qt::Key_Space;
    case 0x2D:
        return Qt::Key_Insert;
    case 0x2E:
        return Qt::Key_Delete;
    default:
        return 0;
    }
}

Qt::KeyboardModifiers QtModifier(int modifierKey) {
    switch (modifierKey) {
    case kVkShift:
        return Qt::ShiftModifier;
    case kVkControl:
        return Qt::ControlModifier;
    case kVkMenu:
        return Qt::AltModifier;
    default:
        return Qt::NoModifier;
    }
}
} // namespace

QKeySequence ToolKeySequence(int virtualKey, int modifierKey) {
    if (virtualKey < 0)
        return {};
    const int key = QtKey(virtualKey);
    if (key == 0)
        return {};
    return QKeySequence(QKeyCombination(QtModifier(modifierKey), static_cast<Qt::Key>(key)));
}
