// SPDX-License-Identifier: Apache-2.0
#pragma once
// The studio's log: one time-stamped line per thing that happened (modules loaded, connections,
// disconnections with their error numbers, sensor events). Lines are also written to stderr so a
// terminal that started the studio sees them.
#include <QPlainTextEdit>

class LogPane : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit LogPane(QWidget* parent = nullptr);

    // The whole log as plain text.
    QString Text() const { return toPlainText(); }

public slots:
    void Append(const QString& line);

private:
    static constexpr int kMaxLines = 5000;
};
