// SPDX-License-Identifier: Apache-2.0
#pragma once
// The module's icons by resource id, each drawn at 16 and 32 pixels (scripts/draw_icons.py). They are
// Qt resources under ":/icons/<id>-16.png" and ":/icons/<id>-32.png", where a host finds them too.
#include <QIcon>

// Both sizes of the icon; a null icon for an id the module does not ship.
QIcon VexaIcon(int iconId);
