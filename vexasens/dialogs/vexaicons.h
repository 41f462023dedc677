#pragma once
// The module's icon resources by identifier (res/resource.h), drawn from the platform's style so they
// match the rest of the desktop.
#include <QIcon>

class QWidget;

// IDI_UP_FOLDER (1705), IDI_NEW_FOLDER (1706); an empty icon for any other identifier.
QIcon VexaLoadIcon(int iconId, const QWidget* widget);
