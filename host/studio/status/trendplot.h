// SPDX-License-Identifier: Apache-2.0
#pragma once
// The trends of an instrument's readings: one strip per chosen reading, stacked, each scaled to its
// own range, over the history's window ending now (narrowed to the time the history covers, at least
// a minute). Gaps (a reading missing from a poll) break the
// line. Draws from the history it is given at each paint; the owner keeps the history alive and calls
// update() when it grows.
#include <QStringList>
#include <QWidget>

class StatusHistory;

class TrendPlot : public QWidget {
    Q_OBJECT
public:
    explicit TrendPlot(QWidget* parent = nullptr);

    // `keys` are history channel keys, drawn top to bottom in this order.
    void SetSeries(const StatusHistory* history, const QStringList& keys);
    const QStringList& Keys() const { return m_keys; }
    // The time at the right edge, ms since 1970 (now by default; tests fix it).
    void SetEndTime(qint64 endMs) { m_endMs = endMs; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintStrip(class QPainter& painter, const QRect& area, const QString& key, qint64 endMs);
    qint64 StartMs(qint64 endMs) const;

    const StatusHistory* m_history = nullptr;
    QStringList m_keys;
    qint64 m_endMs = 0;
};
