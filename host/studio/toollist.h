// SPDX-License-Identifier: Apache-2.0
#pragma once
// The tool list of one sensor type, as a grid of tiles (icon, name, shortcut key) in the sensor type's
// order, with the description of the current tool beneath it and in each tile's tooltip.
// Double-click, Enter or the tool's shortcut (active anywhere in the window) asks for the tool to run.
#include <QIcon>
#include <QList>
#include <QWidget>

class ISensorInfo;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QShortcut;

class ToolListWidget : public QWidget {
    Q_OBJECT
public:
    explicit ToolListWidget(QWidget* parent = nullptr);

    // Shows the tools of a sensor type (null: none) and binds their shortcuts.
    void SetSensorType(ISensorInfo* sensorType);
    ISensorInfo* SensorType() const { return m_sensorType; }

    // The tools as shown, by position.
    int ToolCount() const;
    QString ToolName(int row) const;
    QString ToolKeys(int row) const; // "F8", "Shift+F8"; empty when the tool has no key
    QString ToolDescription(int row) const;
    QIcon ToolIcon(int row) const;
    const QList<QShortcut*>& Shortcuts() const { return m_shortcuts; }
    QListWidget* List() const { return m_list; }
    QLabel* DescriptionLabel() const { return m_description; }

signals:
    // The tool at that position of the sensor type's Tools() was picked.
    void toolActivated(int toolIndex);

private:
    void ShowDescription(const QListWidgetItem* item);

    ISensorInfo* m_sensorType = nullptr;
    QListWidget* m_list;
    QLabel* m_description;
    QList<QShortcut*> m_shortcuts;
};
