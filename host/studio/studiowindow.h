// SPDX-License-Identifier: Apache-2.0
#pragma once
// The studio's main window: the instrument list on the left, the selected instrument's live status
// and its sensor type's tools on the right, the log at the bottom; menus to add, edit and remove
// instruments and to take them on and off line. GUI thread only.
#include "instrumentstore.h"
#include "toolrunner.h"

#include <QMainWindow>
#include <QPointer>
#include <QStringList>
#include <QTimer>

class CPXRegistry;
class DataReviewWindow;
class QMenu;
class InstrumentListModel;
class LinkBanners;
class ISensorInfo;
class ISensorObject;
class LogPane;
class QAction;
class QGroupBox;
class QLabel;
class QPushButton;
class QSortFilterProxyModel;
class QSplitter;
class QTableView;
class RunsWindow;
class SensorManager;
class StatusPanel;
class ToolListWidget;

class StudioWindow : public QMainWindow {
    Q_OBJECT
public:
    struct Startup {
        QString pluginDir;       // folder of the *.sdll modules
        QStringList instruments; // addresses added for this run and taken on line
    };

    // Settings (instruments, window geometry) are kept in `registry`.
    StudioWindow(Startup startup, CPXRegistry& registry, QWidget* parent = nullptr);
    ~StudioWindow() override;

    // Loads the modules and the saved instruments, adds the run's instruments and takes them on
    // line. Call once, after show() so that the operator sees the window while it connects.
    void Start();

    SensorManager& Sensors() const { return *m_sensors; }
    QTableView* InstrumentTable() const { return m_table; }
    StatusPanel* Status() const { return m_status; }
    ToolListWidget* Tools() const { return m_tools; }
    // The Method Editor tool's menu (null until the tool first ran).
    QMenu* MethodMenu() const { return m_methodMenu; }
    LogPane* Log() const { return m_log; }
    RunsWindow* Runs() const { return m_runs; }
    // The Data Review window (null until the tool first ran).
    DataReviewWindow* DataReview() const;
    QLabel* Banner() const { return m_banner; }
    // The notices of instruments that dropped and came back.
    LinkBanners* LinkNotices() const { return m_linkBanners; }
    QPushButton* OnlineButton() const { return m_onlineButton; }
    // Shown while the selected instrument is reconnecting: ends the retries.
    QPushButton* StayOfflineButton() const { return m_stayOfflineButton; }
    // The selected instrument's row in the SensorManager (the list may be sorted), -1 when none.
    int SelectedRow() const;
    void SelectRow(int row);

public slots:
    void AddInstrument();
    void EditInstrument();
    void RemoveInstrument();
    void ToggleOnline();
    // Ends the retries of the selected dropped instrument; it stays off line.
    void StayOffline();
    // Runs the tool at that position of the shown sensor type's tool list.
    void RunTool(int toolIndex);
    // The method editor's actions (the Method Editor tool offers them in a menu).
    void RunMethodEditor(ToolRunner::MethodAction action);
    // Opens a data file for review (Runs' Review).
    void ReviewDataFile(const QString& file);
    // File > Settings...; the alarm settings apply at once on OK.
    void ShowSettings();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void OfferMethodActions();
    void ShowDataReview(ISensorObject* sensor, const std::wstring& file);
    void BuildActions();
    void BuildMenus();
    QWidget* BuildCentralWidget();
    // The instrument list with its buttons.
    QGroupBox* BuildInstrumentBox(QWidget* parent);
    // The status panel above the tool list, in m_rightSplitter.
    void BuildStatusAndTools(QWidget* parent);
    void RestoreGeometry();
    void SaveGeometry();
    void ShowPluginProblem();
    void AddRunInstruments();
    void SaveInstruments();
    void UpdateSelectionState();
    void RefreshStatus();
    void UpdateSummary();
    void RestartTimer();
    void ShowAbout();
    // Reads the alarm limits and interval from the settings and hands them to the sensors.
    void ApplySettings();
    // Raises the tool window of that class open on the selected instrument, or opens one.
    template <class ToolWindow> void ShowToolWindow();
    ISensorInfo* ToolSensorType() const;
    void Message(const QString& text);

    Startup m_startup;
    CPXRegistry& m_registry;
    SensorManager* m_sensors;
    InstrumentStore m_store;
    InstrumentListModel* m_model;
    QSortFilterProxyModel* m_sortedModel;
    QTimer m_timer;

    QLabel* m_banner = nullptr;
    LinkBanners* m_linkBanners = nullptr;
    QLabel* m_summary = nullptr;
    QTableView* m_table = nullptr;
    QPushButton* m_addButton = nullptr;
    QPushButton* m_editButton = nullptr;
    QPushButton* m_removeButton = nullptr;
    QPushButton* m_onlineButton = nullptr;
    QPushButton* m_stayOfflineButton = nullptr;
    QGroupBox* m_statusBox = nullptr;
    StatusPanel* m_status = nullptr;
    QGroupBox* m_toolBox = nullptr;
    ToolListWidget* m_tools = nullptr;
    QMenu* m_methodMenu = nullptr;
    QPointer<DataReviewWindow> m_dataReview;
    LogPane* m_log = nullptr;
    RunsWindow* m_runs = nullptr;
    QSplitter* m_mainSplitter = nullptr;
    QSplitter* m_topSplitter = nullptr;
    QSplitter* m_rightSplitter = nullptr;

    QAction* m_settingsAction = nullptr;
    QAction* m_quitAction = nullptr;
    QAction* m_addAction = nullptr;
    QAction* m_editAction = nullptr;
    QAction* m_removeAction = nullptr;
    QAction* m_onlineAction = nullptr;
    QAction* m_runsAction = nullptr;
    QAction* m_stayOfflineAction = nullptr;
    QAction* m_aboutAction = nullptr;
};
