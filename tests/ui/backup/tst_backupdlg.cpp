// SPDX-License-Identifier: Apache-2.0
// The backup progress window: the bar, the animation and the modal run that only its opener ends.
#include "backupdlg.h"
#include "device.h"

#include <QKeyEvent>
#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

IDevice DeviceWithProgress(const std::string& value) {
    IDevice device(L"VEXA");
    device.SetSnapshot({{"backupProgress", value}});
    return device;
}

bool HoldsColour(const QImage& image, QRgb colour) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if ((image.pixel(x, y) & 0xFFFFFF) == (colour & 0xFFFFFF))
                return true;
    return false;
}

} // namespace

TEST(BackupDlg, TheBarShowsTheProgressModulo101) {
    const struct {
        const char* reported;
        int shown;
    } cases[] = {{"0", 0}, {"37", 37}, {"100", 100}, {"101", 0}, {"150", 49}, {"-1", 100}, {"junk", 0}};
    for (const auto& c : cases) {
        const IDevice device = DeviceWithProgress(c.reported);
        CBackupDlg dialog;
        dialog.SetDevice(&device);
        dialog.open();
        dialog.Tick();
        EXPECT_EQ(dialog.ProgressPosition(), c.shown) << c.reported;
        const auto* bar = dialog.findChild<QProgressBar*>();
        EXPECT_EQ(bar->minimum(), 0);
        EXPECT_EQ(bar->maximum(), 100);
        dialog.EndDialog(IDOK);
    }
}

TEST(BackupDlg, TwentyFourTicksBringTheFirstFrameBackDrawnWithoutItsKeyColour) {
    const IDevice device = DeviceWithProgress("10");
    CBackupDlg dialog;
    dialog.SetDevice(&device);
    dialog.open();
    const QImage first = dialog.RenderAnimation();
    ASSERT_FALSE(first.isNull());
    EXPECT_FALSE(HoldsColour(first, qRgb(0, 0xBF, 0xBF))) << "the key colour is drawn transparent";
    EXPECT_EQ(first.pixel(0, 0), dialog.palette().color(QPalette::Button).rgb());
    EXPECT_NE(first.pixel(first.width() / 2, first.height() / 2), first.pixel(0, 0)) << "a frame is drawn";

    dialog.Tick();
    EXPECT_EQ(dialog.FrameIndex(), 1);
    EXPECT_NE(dialog.RenderAnimation(), first);
    for (int tick = 1; tick < CBackupDlg::kFrameCount; ++tick)
        dialog.Tick();
    EXPECT_EQ(dialog.FrameIndex(), 0);
    EXPECT_EQ(dialog.RenderAnimation(), first);
    dialog.EndDialog(IDOK);
}

TEST(BackupDlg, EscapeIsIgnoredAndTheTimerEndsWithTheWindow) {
    const IDevice device = DeviceWithProgress("42");
    CBackupDlg dialog;
    dialog.SetDevice(&device);
    bool stillOpenAfterEscape = false;
    QTimer::singleShot(0, &dialog, [&] {
        QTest::keyClick(&dialog, Qt::Key_Escape);
        dialog.reject();
        stillOpenAfterEscape = dialog.isVisible();
    });
    // The timer's own ticks move the animation and read the progress while the window is modal.
    QTimer::singleShot(1600, &dialog, [&] { dialog.EndDialog(IDOK); });
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_TRUE(stillOpenAfterEscape);
    EXPECT_GE(dialog.FrameIndex(), 1);
    EXPECT_EQ(dialog.ProgressPosition(), 42);
    EXPECT_FALSE(dialog.TimerRunning());
    EXPECT_TRUE(dialog.windowFlags().testFlag(Qt::CustomizeWindowHint));
    EXPECT_FALSE(dialog.windowFlags().testFlag(Qt::WindowTitleHint));
}
