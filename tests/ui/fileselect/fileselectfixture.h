// SPDX-License-Identifier: Apache-2.0
#pragma once
// A simulated instrument serving a copy of the demo tree, a sensor (on line once StartInstrument ran), a
// workstation folder, the module's dialog launcher, and the file selection dialog, shown (not modal) so
// a case can drive it directly.
#include "../explorerrows.h"
#include "scriptedprompt.h"
#include "simulatedinstrument.h"
#include "tempdir.h"
#include "vexadialoglauncher.h"

#include <gtest/gtest.h>

#include <QTest>

#include <memory>
#include <string>
#include <vector>

class CPXExplorerCtrl;
class CVexaFileSelectDlg;
class VEXASensorObject;

class FileSelectTest : public ::testing::Test {
protected:
    FileSelectTest();
    ~FileSelectTest() override;

    // Starts the simulator and takes the sensor on line (`online` false: the sensor stays off line).
    void StartInstrument(bool online = true);
    static void SetAccess(const char* levels);
    // The dialog, shown; OnInitDialog has run. The PC side's default folder is PcFolder().
    CVexaFileSelectDlg& OpenDialog(uint32_t flags, const std::wstring& initialPath,
                                   const std::wstring& filter = {});
    // An instrument name on the simulator: "@HOST:" + path.
    std::wstring Remote(const std::wstring& path) const { return m_instrument.remote(path); }

    std::string InstrumentPath(const std::string& relative) const { return m_instrument.file(relative); }
    std::string PcPath(const std::string& relative) const { return m_temp.file("pc/" + relative); }
    std::wstring PcFolder() const { return Wide(m_temp.file("pc")); }
    static std::wstring Wide(const std::string& text);

    std::vector<std::wstring> Messages() const;
    static bool WaitFor(const std::function<bool()>& done, int ms = 3000) {
        return QTest::qWaitFor(done, ms);
    }

    SimulatedInstrument m_instrument{SimulatedInstrument::Tree::Demo};
    TempDir m_temp; // the workstation's folder "pc"
    ScriptedPrompt m_prompt;
    CVexaDialogLauncher m_launcher;
    std::unique_ptr<CVexaFileSelectDlg> m_dialog;
};
