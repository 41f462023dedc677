// SPDX-License-Identifier: Apache-2.0
#pragma once
// The notices of instruments that dropped and came back, one closable strip each, stacked above the
// window's contents. Non-modal: the operator reads them when convenient and closes them, or a return
// replaces the loss it answers. GUI thread only. Notices are shown once per pass of the event loop, so
// a fleet that drops at once builds only the strips that stay.
#include <QList>
#include <QPointer>
#include <QWidget>

class QFrame;
class QVBoxLayout;

class LinkBanners : public QWidget {
    Q_OBJECT
public:
    // Beyond this many, the oldest strip goes when a new one comes.
    static constexpr int kMaxBanners = 6;

    explicit LinkBanners(QWidget* parent = nullptr);

    // `key` names the instrument: its return closes its loss strip.
    void ShowLoss(const QString& key, const QString& text);
    void ShowReturn(const QString& key, const QString& text);
    // The instrument is gone or was taken off line: its strips go.
    void Forget(const QString& key);

    // The texts shown, oldest first (notices still waiting for their pass included).
    QStringList Texts();

private:
    struct Notice {
        QString key;
        QString text;
        bool loss;
    };
    void Queue(const QString& key, const QString& text, bool loss);
    void ShowQueued();
    QFrame* Add(const QString& key, const QString& text, bool loss);
    void Close(QFrame* banner);

    QVBoxLayout* m_layout;
    QList<QPointer<QFrame>> m_banners;
    QList<Notice> m_queued;
    bool m_showQueued = false;
};
