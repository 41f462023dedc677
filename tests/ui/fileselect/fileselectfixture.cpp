// SPDX-License-Identifier: Apache-2.0
#include "fileselectfixture.h"

#include "explorerctrl.h"
#include "vexafileselectdlg.h"
#include "vexasensorobject.h"

#include <QApplication>
#include <QString>

#include <cstdlib>

FileSelectTest::FileSelectTest() {
    m_temp.createDir("pc");
    SetAccess("0,1");
    SetVexaDialogLauncher(&m_launcher);
}

FileSelectTest::~FileSelectTest() {
    m_dialog.reset();
    SetVexaDialogLauncher(nullptr);
    m_instrument.dropSensor();
    m_instrument.stop();
    unsetenv("VEXA_ACCESS");
}

void FileSelectTest::StartInstrument(bool online) {
    m_instrument.start();
    m_instrument.makeSensor();
    if (online) {
        ASSERT_TRUE(m_instrument.goOnline()) << "the sensor did not go on line to " << m_instrument.address();
    }
}

void FileSelectTest::SetAccess(const char* levels) {
    setenv("VEXA_ACCESS", levels, 1);
}

CVexaFileSelectDlg& FileSelectTest::OpenDialog(uint32_t flags, const std::wstring& initialPath,
                                               const std::wstring& filter) {
    m_dialog =
        std::make_unique<CVexaFileSelectDlg>(*m_instrument.sensor(), flags, filter, L"Select", initialPath);
    m_dialog->SetDefaultFolders(PcFolder(), L"/Data");
    m_dialog->resize(700, 480);
    m_dialog->show();
    QApplication::processEvents();
    return *m_dialog;
}

std::wstring FileSelectTest::Wide(const std::string& text) {
    return QString::fromStdString(text).toStdWString();
}

std::vector<std::wstring> FileSelectTest::Messages() const {
    std::vector<std::wstring> texts;
    for (const ScriptedPrompt::Question& question : m_prompt.Asked(ScriptedPrompt::Kind::Message))
        texts.push_back(question.text);
    return texts;
}
