#include "fileselectfixture.h"

#include "explorerctrl.h"
#include "vexacommsensor.h"
#include "vexafileselectdlg.h"
#include "vexasensorobject.h"

#include <QApplication>
#include <QString>

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

FileSelectTest::FileSelectTest() {
    const char* source = std::getenv("VEXA_SOURCE_DIR");
    if (!source)
        throw std::runtime_error("VEXA_SOURCE_DIR is not set");
    fs::copy(fs::path(source) / "tools/vexa-sim/demo", m_temp.file("instrument"),
             fs::copy_options::recursive);
    m_temp.createDir("pc");
    SetAccess("0,1");
    SetVexaDialogLauncher(&m_launcher);
}

FileSelectTest::~FileSelectTest() {
    m_dialog.reset();
    SetVexaDialogLauncher(nullptr);
    if (m_sensor) {
        m_sensor->Disconnect(0);
        m_sensor->DecRef();
    }
    m_simulator.reset();
    unsetenv("VEXA_ACCESS");
}

void FileSelectTest::StartInstrument(bool online) {
    m_simulator = std::make_unique<SimulatorProcess>(m_temp.file("instrument"));
    m_sensor = new VEXASensorObject(nullptr, ISensorAddress(m_simulator->host()));
    AttachVexaCommSensor(*m_sensor);
    if (online) {
        ASSERT_TRUE(m_sensor->GoOnline()) << "the sensor did not go on line to " << m_simulator->address();
    }
}

void FileSelectTest::SetAccess(const char* levels) {
    setenv("VEXA_ACCESS", levels, 1);
}

CVexaFileSelectDlg& FileSelectTest::OpenDialog(uint32_t flags, const std::wstring& initialPath,
                                               const std::wstring& filter) {
    m_dialog = std::make_unique<CVexaFileSelectDlg>(*m_sensor, flags, filter, L"Select", initialPath);
    m_dialog->SetDefaultFolders(PcFolder(), L"/Data");
    m_dialog->resize(700, 480);
    m_dialog->show();
    QApplication::processEvents();
    return *m_dialog;
}

std::wstring FileSelectTest::Remote(const std::wstring& path) const {
    return L"@" + m_simulator->host() + L":" + path;
}

std::wstring FileSelectTest::Wide(const std::string& text) {
    return QString::fromStdString(text).toStdWString();
}

int FileSelectTest::RowOf(CPXExplorerCtrl* view, const std::wstring& name) {
    for (int row = 0; row < view->GetItemCount(); ++row)
        if (view->GetItemText(row) == name)
            return row;
    return -1;
}

std::vector<std::wstring> FileSelectTest::Names(CPXExplorerCtrl* view) {
    std::vector<std::wstring> names;
    for (int row = 0; row < view->GetItemCount(); ++row)
        names.push_back(view->GetItemText(row));
    return names;
}

std::vector<std::wstring> FileSelectTest::Messages() const {
    std::vector<std::wstring> texts;
    for (const ScriptedPrompt::Question& question : m_prompt.Asked(ScriptedPrompt::Kind::Message))
        texts.push_back(question.text);
    return texts;
}
