// SPDX-License-Identifier: Apache-2.0
#pragma once
// File > Settings...: every value of the settings table with its default, in groups; a Test button per
// external program. Access levels are shown to everyone and change only for a user who has level 1
// (the file stays the authority: nobody grants himself a level here). OK writes what differs from the
// file. GUI thread.
#include "studiosettings.h"

#include <QDialog>
#include <QMap>

class CPXRegistry;
class QLabel;
class QWidget;

class SettingsDialog : public QDialog {
    Q_OBJECT
public:
    explicit SettingsDialog(CPXRegistry& registry, QWidget* parent = nullptr);

    // The editor of an entry ("Alarms/Interval"), null when none; tests drive these.
    QWidget* Editor(const QString& path) const { return m_editors.value(path); }
    // The editor's text as it would be saved.
    QString EditedValue(const QString& path) const;
    void SetEditedValue(const QString& path, const QString& value);
    // The outcome of the last Test of that program entry ("Programs/Nist").
    QString TestResult(const QString& path) const;
    // Starts the program as the tool would, with a harmless argument; the result shows beside the button.
    void TestProgram(const QString& path);

    // Writes every changed value; false, with the reason shown, when the file cannot be written.
    bool Save();

public slots:
    void accept() override;

private:
    QWidget* MakeEditor(const SettingEntry& entry);
    QWidget* WithButtons(const SettingEntry& entry, QWidget* editor);

    CPXRegistry& m_registry;
    QMap<QString, QWidget*> m_editors;
    QMap<QString, QLabel*> m_testResults;
};
