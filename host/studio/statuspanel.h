// SPDX-License-Identifier: Apache-2.0
#pragma once
// The live status of one instrument: the sensor's status sections as headers with their label/value
// lines, read afresh from the sensor on every refresh. Off line it says so instead.
#include <QWidget>

class ISensorObject;
class QLabel;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

class StatusPanel : public QWidget {
    Q_OBJECT
public:
    explicit StatusPanel(QWidget* parent = nullptr);

    // Shows the sensor's sections when it is on line, else why there is nothing to show. `caption`
    // names the instrument; a null sensor means none is selected. `away` is set while the instrument
    // is gone by itself and being reconnected: what the studio knows of it (the retry, the error).
    void Refresh(ISensorObject* sensor, const QString& caption, const QString& away = {});

    QTreeWidget* Tree() const { return m_tree; }
    // The text shown instead of the sections (empty while the sections are shown).
    QString PlaceholderText() const;
    // "Status of VEXA-1", or "Status" with no instrument.
    const QString& Caption() const { return m_captionText; }

signals:
    void captionChanged(const QString& caption);

private:
    void SetCaption(const QString& caption);
    void ShowPlaceholder(const QString& text);
    void ShowPage(QWidget* page);
    void FillSections(ISensorObject& sensor);
    QTreeWidgetItem* SectionItem(int section);

    QString m_captionText;
    QStackedWidget* m_pages;
    QLabel* m_placeholder;
    QTreeWidget* m_tree;
};
