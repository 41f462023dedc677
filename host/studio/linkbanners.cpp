// SPDX-License-Identifier: Apache-2.0
#include "linkbanners.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <utility>

namespace {
const char* const kKeyProperty = "instrumentKey";
const char* const kLossProperty = "linkLoss";
} // namespace

LinkBanners::LinkBanners(QWidget* parent) : QWidget(parent), m_layout(new QVBoxLayout(this)) {
    setObjectName(QStringLiteral("linkBanners"));
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(3);
    hide();
}

void LinkBanners::ShowLoss(const QString& key, const QString& text) {
    Queue(key, text, true);
}

void LinkBanners::ShowReturn(const QString& key, const QString& text) {
    Queue(key, text, false);
}

void LinkBanners::Queue(const QString& key, const QString& text, bool loss) {
    m_queued.removeIf([&](const Notice& notice) { return notice.key == key; });
    m_queued.append({key, text, loss});
    if (m_showQueued)
        return;
    m_showQueued = true;
    QTimer::singleShot(0, this, &LinkBanners::ShowQueued);
}

void LinkBanners::ShowQueued() {
    m_showQueued = false;
    // Only the newest can stay on screen.
    const QList<Notice> all = std::exchange(m_queued, {});
    for (const Notice& notice : all)
        Forget(notice.key);
    for (const Notice& notice : all.mid(qMax<qsizetype>(0, all.size() - kMaxBanners)))
        Add(notice.key, notice.text, notice.loss);
}

void LinkBanners::Forget(const QString& key) {
    m_queued.removeIf([&](const Notice& notice) { return notice.key == key; });
    const QList<QPointer<QFrame>> banners = m_banners;
    for (const QPointer<QFrame>& banner : banners) {
        if (banner && banner->property(kKeyProperty).toString() == key)
            Close(banner);
    }
}

QStringList LinkBanners::Texts() {
    ShowQueued();
    QStringList texts;
    for (const QPointer<QFrame>& banner : m_banners) {
        if (banner)
            texts << banner->findChild<QLabel*>()->text();
    }
    return texts;
}

QFrame* LinkBanners::Add(const QString& key, const QString& text, bool loss) {
    while (m_banners.size() >= kMaxBanners)
        Close(m_banners.first());
    auto* banner = new QFrame(this);
    banner->setObjectName(loss ? QStringLiteral("linkLossBanner") : QStringLiteral("linkReturnBanner"));
    banner->setProperty(kKeyProperty, key);
    banner->setProperty(kLossProperty, loss);
    banner->setFrameShape(QFrame::StyledPanel);
    banner->setStyleSheet(
        loss ? QStringLiteral("QFrame { background: #fde7e7; border: 1px solid #d32f2f;"
                              " border-radius: 3px; } QLabel { color: #8e1b1b; border: 0; }")
             : QStringLiteral("QFrame { background: #e6f4ea; border: 1px solid #2e7d32;"
                              " border-radius: 3px; } QLabel { color: #1b5e20; border: 0; }"));
    auto* label = new QLabel(text, banner);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* close = new QToolButton(banner);
    close->setObjectName(QStringLiteral("closeBanner"));
    close->setAutoRaise(true);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(tr("Close this notice"));
    connect(close, &QToolButton::clicked, this, [this, banner] { Close(banner); });
    auto* row = new QHBoxLayout(banner);
    row->setContentsMargins(6, 3, 3, 3);
    row->addWidget(label, 1);
    row->addWidget(close, 0, Qt::AlignTop);
    m_layout->addWidget(banner);
    m_banners.append(banner);
    show();
    return banner;
}

void LinkBanners::Close(QFrame* banner) {
    m_banners.removeAll(banner);
    m_layout->removeWidget(banner);
    banner->deleteLater();
    m_banners.removeAll(nullptr);
    setVisible(!m_banners.isEmpty());
}
