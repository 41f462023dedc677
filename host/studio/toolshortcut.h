// SPDX-License-Identifier: Apache-2.0
#pragma once
// A tool's shortcut as the sensor type declares it (Windows virtual-key codes) in Qt's terms.
#include <QKeySequence>

// The key sequence for a virtual-key code and a modifier's virtual-key code (-1: none); empty when
// the tool has no key or the code has no counterpart.
QKeySequence ToolKeySequence(int virtualKey, int modifierKey);
