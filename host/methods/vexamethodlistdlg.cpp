// SPDX-License-Identifier: Apache-2.0
#include "vexamethodlistdlg.h"

#include "editabletable.h"
#include "methodresource.h"
#include "remotename.h"
#include "text.h"
#include "vexafileref.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kMethodColumn = 0;
constexpr int kRepeatColumn = 1;

QPushButton* Button(const QString& text, int id) {
    auto* button = new QPushButton(text);
    button->setProperty("ctrlId", id);
    return button;
}

} // namespace

CVexaMethodListDlg::CVexaMethodListDlg(const VexaMethodSequence& sequence, const std::wstring& fileName,
                                       QWidget* parent)
    : CMethodFileDialog(IDD_VEXA_METHOD_LIST, fileName, L"xmth", L"sequence", tr("Method Sequence"),
                        tr("New sequence"), parent),
      m_saved(sequence) {
    BuildControls();
    ConnectControls();
}

void CVexaMethodListDlg::BuildControls() {
    auto* layout = new QVBoxLayout(this);
    m_steps = new CEditableTable({tr("Method"), tr("Repeat")}, [this](int row) { FillRow(row, {L"", 1}); });
    m_steps->setProperty("ctrlId", IDC_VML_STEPS);
    layout->addWidget(m_steps, 1);
    auto* rows = new QHBoxLayout;
    rows->addWidget(Button(tr("&Add"), IDC_VM_ADD));
    rows->addWidget(Button(tr("&Remove"), IDC_VM_REMOVE));
    rows->addWidget(Button(tr("Move &Up"), IDC_VM_UP));
    rows->addWidget(Button(tr("Move &Down"), IDC_VM_DOWN));
    rows->addWidget(Button(tr("&Browse..."), IDC_VM_BROWSE));
    layout->addLayout(rows);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(Button(tr("&Save"), IDC_VM_SAVE));
    buttons->addWidget(Button(tr("Save &As..."), IDC_VM_SAVE_AS));
    buttons->addWidget(Button(tr("Close"), IDCANCEL));
    layout->addLayout(buttons);
    resize(600, 400);
}

void CVexaMethodListDlg::FillRow(int row, const VexaSequenceStep& step) {
    m_steps->setItem(row, kMethodColumn, new QTableWidgetItem(QString::fromStdWString(step.method)));
    m_steps->setItem(row, kRepeatColumn, new QTableWidgetItem(QString::number(step.repeat)));
}

bool CVexaMethodListDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    m_steps->setRowCount(0);
    for (const VexaSequenceStep& step : m_saved.GetSteps()) {
        const int row = m_steps->rowCount();
        m_steps->insertRow(row);
        FillRow(row, step);
    }
    m_steps->resizeColumnToContents(kMethodColumn);
    UpdateTitle();
    return true;
}

VexaMethodSequence CVexaMethodListDlg::SequenceFromControls(std::vector<std::wstring>* problems) const {
    std::vector<VexaSequenceStep> steps;
    for (int row = 0; row < m_steps->rowCount(); ++row) {
        const QTableWidgetItem* method = m_steps->item(row, kMethodColumn);
        const QTableWidgetItem* repeat = m_steps->item(row, kRepeatColumn);
        bool ok = false;
        const int count = repeat ? repeat->text().trimmed().toInt(&ok) : 0;
        if (!ok)
            problems->push_back(L"Step " + std::to_wstring(row + 1) +
                                L": the repeat count is not a whole number.");
        steps.push_back({method ? method->text().trimmed().toStdWString() : std::wstring(), ok ? count : 1});
    }
    VexaMethodSequence sequence = m_saved;
    sequence.SetSteps(steps);
    return sequence;
}

void CVexaMethodListDlg::OnCommand(int id) {
    if (m_steps->RunRowCommand(id))
        return;
    if (id == IDC_VM_BROWSE)
        BrowseForMethod();
    else
        CMethodFileDialog::OnCommand(id);
}

void CVexaMethodListDlg::BrowseForMethod() {
    const int row = m_steps->currentRow();
    if (row < 0 || !m_methodChooser)
        return;
    QTableWidgetItem* item = m_steps->item(row, kMethodColumn);
    std::wstring chosen;
    if (item && m_methodChooser(item->text().toStdWString(), &chosen) && !chosen.empty())
        item->setText(QString::fromStdWString(chosen));
}

bool CVexaMethodListDlg::WriteTo(const std::wstring& name) {
    std::vector<std::wstring> problems;
    const VexaMethodSequence sequence = SequenceFromControls(&problems);
    const std::vector<std::wstring> checks = sequence.CheckSettings();
    problems.insert(problems.end(), checks.begin(), checks.end());
    // The instrument runs a sequence by itself: it reaches its own files only.
    std::wstring host;
    if (SplitRemoteName(name, &host, nullptr)) {
        const std::vector<VexaSequenceStep> steps = sequence.GetSteps();
        for (size_t i = 0; i < steps.size(); ++i) {
            std::wstring stepHost;
            if (!SplitRemoteName(steps[i].method, &stepHost, nullptr) || !EqualsNoCase(stepHost, host))
                problems.push_back(L"Step " + std::to_wstring(i + 1) + L": the instrument cannot reach " +
                                   steps[i].method +
                                   L"; choose a method on the instrument itself, or save "
                                   L"the sequence on the PC.");
        }
    }
    if (!SaveChecked(problems, [&](VexaFileRef& file) { return sequence.Save(file, name); }))
        return false;
    m_saved = sequence;
    return true;
}

bool CVexaMethodListDlg::HasChanges() const {
    std::vector<std::wstring> problems;
    return !(SequenceFromControls(&problems) == m_saved);
}
