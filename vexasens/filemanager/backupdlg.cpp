// SPDX-License-Identifier: Apache-2.0
#include "backupdlg.h"

#include "drawtransparent.h"
#include "resource.h"
#include "ui_dialog1740.h"
#include "vexadevice.h"

#include <QPainter>
#include <QProgressBar>
#include <QTimerEvent>

// Resources live outside any namespace; a static library's resource object is only linked when
// something calls its initialiser.
static void LoadBitmapResources() {
    Q_INIT_RESOURCE(bitmaps);
}

CBackupDlg::CBackupDlg(QWidget* parent) : CDialog_(IDD_BACKUP, parent) {
    LoadBitmapResources();
    Ui::Dialog1740 form;
    SetupTemplate(form);
    SetAsksUser(false);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint); // no caption
    m_progress = qobject_cast<QProgressBar*>(GetDlgItem(IDC_BACKUP_PROGRESS));
}

CBackupDlg::~CBackupDlg() {
    StopTimer();
}

bool CBackupDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    m_frame = 0;
    m_progress->setRange(0, 100);
    m_progress->setValue(0);
    m_strip.load(QStringLiteral(":/vexasens/%1.png").arg(IDB_BACKUP_ANIMATION));
    StopTimer();
    m_timer = startTimer(kTimerMs);
    return true;
}

void CBackupDlg::done(int code) {
    StopTimer();
    m_strip = QImage();
    CDialog_::done(code);
}

void CBackupDlg::StopTimer() {
    if (m_timer != 0)
        killTimer(m_timer);
    m_timer = 0;
}

void CBackupDlg::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_timer)
        Tick();
    else
        CDialog_::timerEvent(event);
}

void CBackupDlg::Tick() {
    m_frame = (m_frame + 1) % kFrameCount;
    if (isVisible())
        repaint(AnimationArea());
    // Whatever the instrument reports, the bar stays within its range.
    const int progress = m_device != nullptr ? VexaDevice(*m_device).getBackupProgress() : 0;
    m_progress->setValue(((progress % 101) + 101) % 101);
}

int CBackupDlg::ProgressPosition() const {
    return m_progress->value();
}

QRect CBackupDlg::AnimationArea() const {
    const QWidget* area = GetDlgItem(IDC_BACKUP_ANIMATION);
    return area != nullptr ? area->geometry() : QRect();
}

// The frame goes into an off-screen picture first and reaches the screen in one piece, so the
// animation never flickers. It is centred in the area and cut to the area's width.
QImage CBackupDlg::RenderAnimation() const {
    const QRect area = AnimationArea();
    QImage picture(area.size(), QImage::Format_RGB32);
    picture.fill(palette().color(QPalette::Button));
    QPainter painter(&picture);
    const int width = std::min(kFrameWidth, area.width());
    const QRect target((area.width() - width) / 2, 0, width, std::min(m_strip.height(), area.height()));
    PXDrawTransparent(painter, target, m_strip, QPoint(kFrameWidth * m_frame, 0), kKeyColour);
    return picture;
}

void CBackupDlg::paintEvent(QPaintEvent* event) {
    CDialog_::paintEvent(event);
    QPainter painter(this);
    painter.drawImage(AnimationArea().topLeft(), RenderAnimation());
}
