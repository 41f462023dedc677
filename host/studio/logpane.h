// SPDX-License-Identifier: Apache-2.0
#pragma once
// The studio's log: one time-stamped line per thing that happened (modules loaded, connections,
// disconnections with their error numbers, instrument notifications, tools that ran or failed), in
// the operator's words. Numbers an operator does not need (event codes) go in the detail column and
// the line's tooltip. Lines are also written to stderr so a terminal that started the studio sees
// them. GUI thread only.
#include <QWidget>

class QTreeWidget;

class LogPane : public QWidget {
    Q_OBJECT
public:
    explicit LogPane(QWidget* parent = nullptr);

    // The whole log as plain text, one line per entry: time, text and, in brackets, the detail.
    QString Text() const;
    int LineCount() const;
    // The detail of entry `line` (0 = oldest kept), empty when it has none.
    QString Detail(int line) const;
    QTreeWidget* Lines() const { return m_lines; }

    // Writes Text() to `path` (replacing it); false with *error set when that failed.
    bool SaveTo(const QString& path, QString* error) const;

public slots:
    void Append(const QString& line);
    void AppendWithDetail(const QString& line, const QString& detail);
    // Asks for a file and saves the log there.
    void SaveAs();
    void Clear();

private:
    static constexpr int kMaxLines = 5000;
    QTreeWidget* m_lines;
};
