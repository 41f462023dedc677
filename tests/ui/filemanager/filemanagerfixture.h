// SPDX-License-Identifier: Apache-2.0
#pragma once
// A simulated instrument serving a copy of the demo tree, a sensor on line to it, a workstation folder
// and the Manage Files dialog over both, shown (not modal) so a case can drive it directly.
#include "../explorerrows.h"
#include "scriptedprompt.h"
#include "simulatedinstrument.h"
#include "tempdir.h"

#include <gtest/gtest.h>

#include <QPoint>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

class CPXExplorerCtrl;
class QMenu;
class CVexaFileDlg;
class VEXASensorObject;

class FileManagerTest : public ::testing::Test {
protected:
    FileManagerTest();
    ~FileManagerTest() override;

    // Starts the simulator (extra arguments such as {"--fault", "trickle=0"}) and takes the sensor on
    // line. Access levels for the case: VEXA_ACCESS, e.g. "0,1" or "".
    void StartInstrument(const std::vector<std::string>& simulatorArgs = {});
    static void SetAccess(const char* levels);
    // The dialog on the workstation folder and `sensor` (by default the instrument's), shown;
    // OnInitDialog has run.
    CVexaFileDlg& OpenDialog(VEXASensorObject* sensor = nullptr);

    std::string InstrumentPath(const std::string& relative) const { return m_instrument.file(relative); }
    std::string PcPath(const std::string& relative) const { return m_temp.file("pc/" + relative); }
    std::string PcFolder() const { return m_temp.file("pc"); }
    static std::wstring Wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

    // Selects exactly these names (asserting that each is listed).
    static void Select(CPXExplorerCtrl* view, const std::vector<std::wstring>& names);
    // Waits, dispatching events, until `done` holds or `ms` pass.
    static bool WaitFor(const std::function<bool()>& done, int ms = 3000) {
        return QTest::qWaitFor(done, ms);
    }
    // A drag of the selected rows of `from`, pressed on `row`, released at a global point.
    static void DragRowTo(CPXExplorerCtrl* from, int row, const QPoint& globalDrop);
    static QPoint CenterOf(const QWidget* widget);
    // The command ids of a menu's items, separators left out.
    static std::vector<int> MenuCommands(QMenu& menu);

    SimulatedInstrument m_instrument{SimulatedInstrument::Tree::Demo};
    TempDir m_temp; // the workstation's folder "pc", and profiles for the simulator
    ScriptedPrompt m_prompt;
    std::unique_ptr<CVexaFileDlg> m_dialog;
};
