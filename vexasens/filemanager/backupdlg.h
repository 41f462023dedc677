// SPDX-License-Identifier: Apache-2.0
#pragma once
// The small modal window shown while the instrument packs a backup: a turning-reels animation and a
// progress bar fed by the instrument's backup progress. It has no buttons and ignores Escape: the user
// waits for the instrument, and whoever receives the backup's notification ends it (EndDialog).
// Runs on the user-interface thread; the progress comes from the sensor's device snapshot, which the
// sensor's own timer keeps fresh, so a tick never touches the network.
#include "dialog.h"

#include <QImage>

class IDevice;
class QProgressBar;

class CBackupDlg : public CDialog_ {
    Q_OBJECT
public:
    static constexpr int kTimerMs = 500;
    static constexpr int kFrameCount = 24;
    static constexpr int kFrameWidth = 60;
    // The strip's transparent colour, a COLORREF (blue 0xBF, green 0xBF, red 0).
    static constexpr unsigned kKeyColour = 0xBFBF00;

    explicit CBackupDlg(QWidget* parent = nullptr);
    ~CBackupDlg() override;

    // The instrument's "VEXA" device, read on every tick; it must outlive the modal run.
    void SetDevice(const IDevice* device) { m_device = device; }

    // One timer tick: the next animation frame, painted at once, and the progress read again.
    void Tick();
    int FrameIndex() const { return m_frame; }
    // What the bar shows, 0 to 100.
    int ProgressPosition() const;
    bool TimerRunning() const { return m_timer != 0; }
    // The animation area as it is painted (the off-screen picture), for the opener and tests.
    QImage RenderAnimation() const;

protected:
    bool OnInitDialog() override;
    // Escape and the close box do nothing.
    void OnCancel() override {}
    void done(int code) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect AnimationArea() const;
    void StopTimer();

    const IDevice* m_device = nullptr;
    QImage m_strip;
    int m_frame = 0;
    int m_timer = 0;
    QProgressBar* m_progress = nullptr;
};
