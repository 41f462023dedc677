#include "vexaicons.h"

#include "resource.h"

#include <QStyle>
#include <QWidget>

QIcon VexaLoadIcon(int iconId, const QWidget* widget) {
    QStyle* style = widget ? widget->style() : nullptr;
    if (!style)
        return {};
    switch (iconId) {
    case IDI_UP_FOLDER:
        return style->standardIcon(QStyle::SP_FileDialogToParent, nullptr, widget);
    case IDI_NEW_FOLDER:
        return style->standardIcon(QStyle::SP_FileDialogNewFolder, nullptr, widget);
    default:
        return {};
    }
}
