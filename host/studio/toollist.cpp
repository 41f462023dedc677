// SPDX-License-Identifier: Apache-2.0
#include "toollist.h"

#include "sensorinfo.h"
#include "toolicons.h"
#include "toolshortcut.h"

#include <QLabel>
#include <QListWidget>
#include <QShortcut>
#include <QVBoxLayout>

namespace {
enum Role {
    kToolIndexRole = Qt::UserRole + 1,
    kNameRole,
    kKeysRole,
    kDescriptionRole,
};
constexpr int kIconSize = 32;
const QString kHint = QStringLiteral("Double-click a tool, or press its key, to run it.");
} // namespace

ToolListWidget::ToolListWidget(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("toolList"));
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("toolTiles"));
    m_list->setViewMode(QListView::IconMode);
    m_list->setMovement(QListView::Static);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setWrapping(true);
    m_list->setWordWrap(true);
    m_list->setTextElideMode(Qt::ElideNone);
    m_list->setIconSize(QSize(kIconSize, kIconSize));
    const int tileWidth = qMax(112, fontMetrics().horizontalAdvance(QStringLiteral("Service Module")) + 16);
    const QSize tile(tileWidth, kIconSize + 2 * fontMetrics().lineSpacing() + 16);
    m_list->setGridSize(tile);
    // Room for two rows of tiles, which holds a sensor type's usual ten tools on a normal width.
    m_list->setMinimumHeight(2 * tile.height() + 2 * m_list->frameWidth() + 4);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setMouseTracking(true);

    m_description = new QLabel(this);
    m_description->setObjectName(QStringLiteral("toolDescription"));
    m_description->setWordWrap(true);
    m_description->setMinimumHeight(2 * fontMetrics().height());
    m_description->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_description);
    setFocusProxy(m_list);

    connect(m_list, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { emit toolActivated(item->data(kToolIndexRole).toInt()); });
    connect(m_list, &QListWidget::currentItemChanged, this,
            [this](QListWidgetItem* item) { ShowDescription(item); });
    connect(m_list, &QListWidget::itemEntered, this,
            [this](QListWidgetItem* item) { ShowDescription(item); });
}

void ToolListWidget::SetSensorType(ISensorInfo* sensorType) {
    m_list->clear();
    qDeleteAll(m_shortcuts);
    m_shortcuts.clear();
    m_sensorType = sensorType;
    m_description->setText(sensorType ? kHint : QString());
    if (!sensorType)
        return;
    const std::vector<SensorTool>& tools = sensorType->Tools();
    for (int i = 0; i < static_cast<int>(tools.size()); ++i) {
        const SensorTool& tool = tools[static_cast<size_t>(i)];
        const QString name = QString::fromStdWString(tool.name);
        const QString description = QString::fromStdWString(tool.description);
        const QKeySequence keySequence = ToolKeySequence(tool.key, tool.modifier);
        const QString keys = keySequence.toString(QKeySequence::NativeText);

        auto* item =
            new QListWidgetItem(ToolIcons::ForTool(tool), keys.isEmpty() ? name : name + "\n" + keys, m_list);
        item->setData(kToolIndexRole, i);
        item->setData(kNameRole, name);
        item->setData(kKeysRole, keys);
        item->setData(kDescriptionRole, description);
        item->setTextAlignment(Qt::AlignHCenter | Qt::AlignTop);
        item->setToolTip(keys.isEmpty() ? description : tr("%1\nKey: %2").arg(description, keys));

        if (!keySequence.isEmpty()) {
            auto* shortcut = new QShortcut(keySequence, this);
            shortcut->setContext(Qt::WindowShortcut);
            shortcut->setObjectName(QStringLiteral("toolShortcut:%1").arg(name));
            connect(shortcut, &QShortcut::activated, this, [this, i] { emit toolActivated(i); });
            m_shortcuts.append(shortcut);
        }
    }
}

int ToolListWidget::ToolCount() const {
    return m_list->count();
}

QString ToolListWidget::ToolName(int row) const {
    const QListWidgetItem* item = m_list->item(row);
    return item ? item->data(kNameRole).toString() : QString();
}

QString ToolListWidget::ToolKeys(int row) const {
    const QListWidgetItem* item = m_list->item(row);
    return item ? item->data(kKeysRole).toString() : QString();
}

QString ToolListWidget::ToolDescription(int row) const {
    const QListWidgetItem* item = m_list->item(row);
    return item ? item->data(kDescriptionRole).toString() : QString();
}

QIcon ToolListWidget::ToolIcon(int row) const {
    const QListWidgetItem* item = m_list->item(row);
    return item ? item->icon() : QIcon();
}

void ToolListWidget::ShowDescription(const QListWidgetItem* item) {
    if (!item) {
        m_description->setText(m_sensorType ? kHint : QString());
        return;
    }
    const QString text = QStringLiteral("<b>%1</b>: %2")
                             .arg(item->data(kNameRole).toString().toHtmlEscaped(),
                                  item->data(kDescriptionRole).toString().toHtmlEscaped());
    m_description->setText(text);
}
