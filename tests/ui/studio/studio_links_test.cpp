// SPDX-License-Identifier: Apache-2.0
// Instruments that drop off the network by themselves: retried on the back-off, told once each way,
// never retried after the operator chose off line.
#include "studiofixture.h"

#include "demotree.h"
#include "instrumentlistmodel.h"
#include "linkbanners.h"
#include "managedinstrument.h"
#include "sensormanager.h"
#include "sensorobject.h"
#include "sensorref.h"
#include "simulator.h"
#include "statuspanel.h"

#include <QColor>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>

namespace {

QVariant RowData(StudioWindow& window, int row, int role) {
    QAbstractItemModel* model = window.InstrumentTable()->model();
    return model->data(model->index(row, InstrumentListModel::kColumnState), role);
}

} // namespace

TEST_F(StudioTest, OutageIsToldOnceRetriedAndRecovered) {
    SimulatorProcess simulator(CopyDemoTree(m_temp.file("demo")), {"--fault", "outage=1500:3000"});
    StudioWindow& window = StartStudio(BuiltPluginDir(), {QString::fromStdString(simulator.address())});
    ASSERT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online) << LogText().toStdString();
    QSignalSpy lost(&window.Sensors(), &SensorManager::linkLost);
    QSignalSpy returned(&window.Sensors(), &SensorManager::linkReturned);
    window.SelectRow(0);

    ASSERT_TRUE(WaitFor([&] { return Instrument(0).GetState() == ManagedInstrument::State::Reconnecting; }))
        << LogText().toStdString();
    EXPECT_TRUE(RowData(window, 0, Qt::DisplayRole).toString().startsWith("Reconnecting"));
    EXPECT_TRUE(RowData(window, 0, Qt::BackgroundRole).value<QColor>().red() > 200) << "a drop is red";
    EXPECT_TRUE(window.Status()->PlaceholderText().contains("is away"))
        << window.Status()->PlaceholderText().toStdString();
    EXPECT_TRUE(window.StayOfflineButton()->isVisible());
    ASSERT_EQ(window.LinkNotices()->Texts().size(), 1);
    EXPECT_TRUE(window.LinkNotices()->Texts()[0].contains("stopped answering at"));

    ASSERT_TRUE(WaitFor([&] { return Instrument(0).GetState() == ManagedInstrument::State::Online; }, 30000))
        << LogText().toStdString();
    // The sensor is on line before its on-line notification has been dispatched to the window.
    EXPECT_TRUE(WaitFor([&] { return returned.count() > 0; })) << LogText().toStdString();
    EXPECT_TRUE(WaitFor([&] { return !window.Status()->PlaceholderText().contains("away"); }));
    EXPECT_EQ(lost.count(), 1) << LogText().toStdString();
    EXPECT_EQ(returned.count(), 1) << LogText().toStdString();
    EXPECT_EQ(LogText().count("stopped answering at"), 1);
    EXPECT_EQ(LogText().count("back on line after"), 1);
    ASSERT_EQ(window.LinkNotices()->Texts().size(), 1) << "the return replaces the loss";
    EXPECT_TRUE(window.LinkNotices()->Texts()[0].contains("back on line after"));
    EXPECT_FALSE(RowData(window, 0, Qt::BackgroundRole).isValid());
}

TEST_F(StudioTest, OffLineByChoiceDuringTheBackOffStaysOffLine) {
    SimulatorProcess simulator(CopyDemoTree(m_temp.file("demo")), {"--fault", "outage=1000:3000"});
    StudioWindow& window = StartStudio(BuiltPluginDir(), {QString::fromStdString(simulator.address())});
    ASSERT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online) << LogText().toStdString();
    ASSERT_TRUE(WaitFor([&] { return Instrument(0).GetState() == ManagedInstrument::State::Reconnecting; }))
        << LogText().toStdString();
    QSignalSpy returned(&window.Sensors(), &SensorManager::linkReturned);

    window.SelectRow(0);
    window.StayOffline();
    EXPECT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Offline);
    EXPECT_TRUE(window.LinkNotices()->Texts().isEmpty()) << "the operator's choice makes the notice moot";
    // Well past the outage and several back-off steps: nothing brings it back.
    QTest::qWait(6000);
    EXPECT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Offline) << LogText().toStdString();
    EXPECT_EQ(returned.count(), 0);
    EXPECT_EQ(LogText().count("Connecting to"), 1) << "only the start's: " << LogText().toStdString();

    // The operator's own Go on line works as before.
    window.OnlineButton()->click();
    EXPECT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online) << LogText().toStdString();
}

TEST_F(StudioTest, InstrumentRemovedWhileReconnectingIsLetGo) {
    SimulatorProcess simulator(CopyDemoTree(m_temp.file("demo")), {"--fault", "outage=1000:60000"});
    StudioWindow& window = StartStudio(BuiltPluginDir(), {QString::fromStdString(simulator.address())});
    ASSERT_TRUE(WaitFor([&] { return Instrument(0).GetState() == ManagedInstrument::State::Reconnecting; }))
        << LogText().toStdString();
    SensorRef<> sensor = SensorRef<>::Share(Instrument(0).Sensor());
    EXPECT_TRUE(window.Sensors().Remove(0)) << "the retries do not pin the instrument";
    EXPECT_TRUE(window.LinkNotices()->Texts().isEmpty());
    EXPECT_TRUE(WaitFor([&] { return sensor->RefCount() == 1; }, 10000)) << "the retry lets go of it";
    EXPECT_TRUE(sensor->KeepOffline());
    EXPECT_FALSE(sensor->IsOnline(false));
}
