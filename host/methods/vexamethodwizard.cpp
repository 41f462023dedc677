// SPDX-License-Identifier: Apache-2.0
#include "vexamethodwizard.h"

#include "editabletable.h"
#include "methodresource.h"
#include "timespan.h"
#include "vexafileref.h"
#include "vexamodels.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QVBoxLayout>

#include <climits>
#include <cmath>

namespace {

constexpr int kGcIds[5] = {IDC_VMW_INITIAL_TEMP, IDC_VMW_INITIAL_HOLD, IDC_VMW_RATE, IDC_VMW_FINAL_TEMP,
                           IDC_VMW_FINAL_HOLD};
const char* const kGcLabels[5] = {"Initial temperature (°C):", "Initial hold (s):", "Rate (°C/min):",
                                  "Final temperature (°C):", "Final hold (s):"};
constexpr int kTimeColumn = 0;
constexpr int kValveColumn = 1;
// A spin box at its minimum, or a combo box on this value, shows a setting the file did not hold.
constexpr int kNotSet = INT_MIN;
constexpr int kSpinLimit = 100000;

template <class W> W* WithId(W* widget, int id) {
    widget->setProperty("ctrlId", id);
    return widget;
}

// The named codes of a setting, from 0 up to the first code without a name.
QComboBox* CodedCombo(int id, std::wstring (*name)(int code)) {
    auto* combo = WithId(new QComboBox, id);
    for (int code = 0; !name(code).empty(); ++code)
        combo->addItem(QString::fromStdWString(name(code)), code);
    return combo;
}

QSpinBox* Spin(int id) {
    auto* spin = WithId(new QSpinBox, id);
    spin->setRange(-kSpinLimit - 1, kSpinLimit);
    spin->setSpecialValueText(QObject::tr("not set"));
    return spin;
}

bool IsNotSet(const QSpinBox* spin) {
    return spin->value() == spin->minimum();
}

// Shows `value`, or "not set" when the method lacks the setting.
void ShowSpin(QSpinBox* spin, bool set, int value) {
    spin->setValue(set ? value : spin->minimum());
}

void ShowCombo(QComboBox* combo, bool set, int value, const QString& text) {
    if (set)
        SelectComboValue(combo, value, text);
    else
        SelectComboValue(combo, kNotSet, QObject::tr("not set"));
}

QString ValveStateText(int state) {
    if (state >= 0 && state < kValveStateCount)
        return QString::fromWCharArray(VexaMethodEvent::ValveStateName(state));
    return QString("Unknown (%1)").arg(state);
}

int ComboValue(const QComboBox* combo) {
    return combo->currentData().toInt();
}

} // namespace

CVexaMethodWizard::CVexaMethodWizard(const VexaMethod& method, const std::wstring& fileName,
                                     VexaWizardMode mode, QWidget* parent, const std::wstring& extension)
    : CMethodFileDialog(IDD_VEXA_METHOD_WIZARD, fileName, extension, L"method", tr("Method Editor"),
                        tr("New method"), parent),
      m_saved(method), m_mode(mode) {
    BuildControls();
    ConnectControls();
}

void CVexaMethodWizard::BuildControls() {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(BuildMainSettings());
    QWidget* expert = BuildExpertSettings();
    expert->setVisible(m_mode == kWizardExpert);
    layout->addWidget(expert, 1);
    m_runTime = WithId(new QLabel, IDC_VMW_RUN_TIME);
    layout->addWidget(m_runTime);
    layout->addWidget(BuildButtons());
    resize(m_mode == kWizardExpert ? QSize(640, 720) : QSize(480, 300));
}

QWidget* CVexaMethodWizard::BuildMainSettings() {
    auto* group = new QGroupBox(tr("Method"));
    auto* form = new QFormLayout(group);
    m_description = WithId(new QLineEdit, IDC_VMW_DESCRIPTION);
    m_model = WithId(new QComboBox, IDC_VMW_MODEL);
    for (int model : Vexa::GetModels())
        m_model->addItem(QString::fromStdWString(Vexa::GetModelName(model)), model);
    m_accessory = WithId(new QComboBox, IDC_VMW_ACCESSORY);
    m_methodMode = CodedCombo(IDC_VMW_METHOD_MODE, Vexa::GetMethodModeName);
    m_scanMode = CodedCombo(IDC_VMW_SCAN_MODE, Vexa::GetScanModeName);
    m_concentrator = CodedCombo(IDC_VMW_CONCENTRATOR, Vexa::GetConcentratorName);
    form->addRow(tr("Description:"), m_description);
    form->addRow(tr("Model:"), m_model);
    form->addRow(tr("Sample input device:"), m_accessory);
    form->addRow(tr("Mode:"), m_methodMode);
    form->addRow(tr("Collection mode:"), m_scanMode);
    form->addRow(tr("Concentrator:"), m_concentrator);
    connect(m_model, &QComboBox::currentIndexChanged, this,
            [this] { RefillAccessories(ComboValue(m_model), ComboValue(m_accessory)); });
    return group;
}

QWidget* CVexaMethodWizard::BuildExpertSettings() {
    auto* group = WithId(new QGroupBox(tr("Programme")), IDC_VMW_EXPERT_GROUP);
    auto* layout = new QHBoxLayout(group);
    auto* form = new QFormLayout;
    for (int i = 0; i < 5; ++i) {
        m_gc[i] = Spin(kGcIds[i]);
        form->addRow(tr(kGcLabels[i]), m_gc[i]);
    }
    m_massLow = Spin(IDC_VMW_MASS_LOW);
    m_massHigh = Spin(IDC_VMW_MASS_HIGH);
    m_simIons = WithId(new QLineEdit, IDC_VMW_SIM_IONS);
    m_simIons->setPlaceholderText(tr("e.g. 69, 219"));
    form->addRow(tr("Low mass (amu):"), m_massLow);
    form->addRow(tr("High mass (amu):"), m_massHigh);
    form->addRow(tr("SIM ions:"), m_simIons);
    layout->addLayout(form);

    auto* events = new QVBoxLayout;
    m_events =
        WithId(new CEditableTable({tr("Time (s)"), tr("Valve state")}, [this](int row) { AddEventRow(row); }),
               IDC_VMW_EVENTS);
    connect(m_events, &CEditableTable::rowsChanged, this, &CVexaMethodWizard::UpdateRunTime);
    connect(m_events, &QTableWidget::itemChanged, this, &CVexaMethodWizard::UpdateRunTime);
    events->addWidget(m_events, 1);
    auto* rowButtons = new QHBoxLayout;
    const std::pair<int, const char*> buttons[] = {{IDC_VM_ADD, "&Add"},
                                                   {IDC_VM_REMOVE, "&Remove"},
                                                   {IDC_VM_UP, "Move &Up"},
                                                   {IDC_VM_DOWN, "Move &Down"}};
    for (const auto& [id, text] : buttons)
        rowButtons->addWidget(WithId(new QPushButton(tr(text)), id));
    events->addLayout(rowButtons);
    layout->addLayout(events, 1);
    return group;
}

QWidget* CVexaMethodWizard::BuildButtons() {
    auto* box = new QWidget;
    auto* layout = new QHBoxLayout(box);
    layout->addStretch(1);
    layout->addWidget(WithId(new QPushButton(tr("&Save")), IDC_VM_SAVE));
    layout->addWidget(WithId(new QPushButton(tr("Save &As...")), IDC_VM_SAVE_AS));
    layout->addWidget(WithId(new QPushButton(tr("Close")), IDCANCEL));
    return box;
}

void CVexaMethodWizard::AddEventRow(int row) {
    auto* time = new QTableWidgetItem(row > 0 && m_events->item(row - 1, kTimeColumn)
                                          ? m_events->item(row - 1, kTimeColumn)->text()
                                          : QString("0.000"));
    m_events->setItem(row, kTimeColumn, time);
    auto* state = new QComboBox;
    for (int code = 0; code < kValveStateCount; ++code)
        state->addItem(ValveStateText(code), code);
    connect(state, &QComboBox::currentIndexChanged, this, &CVexaMethodWizard::UpdateRunTime);
    m_events->setCellWidget(row, kValveColumn, state);
}

bool CVexaMethodWizard::OnInitDialog() {
    CDialog_::OnInitDialog();
    ShowMethod(m_saved);
    // What the controls make of the method as shown: a setting the file lacked is no change.
    std::vector<std::wstring> ignored;
    m_shown = MethodFromControls(&ignored);
    UpdateTitle();
    return true;
}

void CVexaMethodWizard::ShowMethod(const VexaMethod& method) {
    m_description->setText(QString::fromStdWString(method.getDescription()));
    ShowCombo(m_model, method.IsSet(L"model"), method.getModel(),
              QString::fromStdWString(Vexa::GetModelName(method.getModel())));
    RefillAccessories(method.getModel(), method.getAccessory());
    if (!method.IsSet(L"accessory"))
        ShowCombo(m_accessory, false, 0, {});
    ShowCombo(m_methodMode, method.IsSet(L"methodMode"), method.getMethodMode(),
              QString("Unknown (%1)").arg(method.getMethodMode()));
    ShowCombo(m_scanMode, method.IsSet(L"scanMode"), method.getScanMode(),
              QString("Unknown (%1)").arg(method.getScanMode()));
    ShowCombo(m_concentrator, method.IsSet(L"concentrator"), method.getConcentrator(),
              QString("Unknown (%1)").arg(method.getConcentrator()));
    const VexaGcProgram gc = method.getGcProgram();
    const int values[5] = {gc.initialTemp, gc.initialHold, gc.rate, gc.finalTemp, gc.finalHold};
    const wchar_t* const gcKeys[5] = {L"gc.initialTemp", L"gc.initialHold", L"gc.rate", L"gc.finalTemp",
                                      L"gc.finalHold"};
    for (int i = 0; i < 5; ++i)
        ShowSpin(m_gc[i], method.IsSet(gcKeys[i]), values[i]);
    const VexaMassRange ms = method.getMassRange();
    ShowSpin(m_massLow, method.IsSet(L"ms.massLow"), ms.massLow);
    ShowSpin(m_massHigh, method.IsSet(L"ms.massHigh"), ms.massHigh);
    QStringList ions;
    for (int ion : ms.simIons)
        ions << QString::number(ion);
    m_simIons->setText(ions.join(", "));
    m_events->setRowCount(0);
    for (const VexaMethodEvent& event : method.GetEvents()) {
        const int row = m_events->rowCount();
        m_events->insertRow(row);
        AddEventRow(row);
        m_events->item(row, kTimeColumn)->setText(QString::number(double(event.getTime()) / 1000.0, 'f', 3));
        SelectComboValue(qobject_cast<QComboBox*>(m_events->cellWidget(row, kValveColumn)),
                         event.getValveState(), ValveStateText(event.getValveState()));
    }
    UpdateRunTime();
}

void CVexaMethodWizard::RefillAccessories(int model, int accessory) {
    QSignalBlocker block(m_accessory);
    m_accessory->clear();
    for (int code : Vexa::GetAccessories(model))
        m_accessory->addItem(QString::fromStdWString(Vexa::GetAccessoryName(code, model)), code);
    SelectComboValue(m_accessory, accessory,
                     QString::fromStdWString(Vexa::GetAccessoryName(accessory, model)));
}

VexaMethod CVexaMethodWizard::MethodFromControls(std::vector<std::wstring>* problems) const {
    VexaMethod method = m_saved;
    method.setDescription(m_description->text().toStdWString());
    method.setModel(ComboValue(m_model));
    method.setAccessory(ComboValue(m_accessory));
    method.setMethodMode(ComboValue(m_methodMode));
    method.setScanMode(ComboValue(m_scanMode));
    method.setConcentrator(ComboValue(m_concentrator));
    method.setGcProgram(
        {m_gc[0]->value(), m_gc[1]->value(), m_gc[2]->value(), m_gc[3]->value(), m_gc[4]->value()});
    // Saving refuses a setting still shown as not set, naming it.
    for (int i = 0; i < 5; ++i)
        if (IsNotSet(m_gc[i]))
            problems->push_back(QString(kGcLabels[i]).chopped(1).toStdWString() + L" is not set.");
    const std::pair<const QComboBox*, const wchar_t*> combos[] = {{m_model, L"Model"},
                                                                  {m_accessory, L"Sample input device"},
                                                                  {m_methodMode, L"Mode"},
                                                                  {m_scanMode, L"Collection mode"},
                                                                  {m_concentrator, L"Concentrator"}};
    for (const auto& [combo, label] : combos)
        if (ComboValue(combo) == kNotSet)
            problems->push_back(std::wstring(label) + L" is not set.");
    if (IsNotSet(m_massLow) || IsNotSet(m_massHigh))
        problems->push_back(L"The mass range is not set.");
    VexaMassRange range{m_massLow->value(), m_massHigh->value(), {}};
    for (const QString& text : m_simIons->text().split(QRegularExpression("[,;\\s]+"), Qt::SkipEmptyParts)) {
        bool ok = false;
        const int ion = text.toInt(&ok);
        if (ok)
            range.simIons.push_back(ion);
        else
            problems->push_back(L"SIM ion \"" + text.toStdWString() + L"\" is not a whole number.");
    }
    method.setMassRange(range);
    std::vector<VexaMethodEvent> events;
    for (int row = 0; row < m_events->rowCount(); ++row) {
        bool ok = false;
        const QTableWidgetItem* time = m_events->item(row, kTimeColumn);
        const double seconds = time ? time->text().trimmed().toDouble(&ok) : 0.0;
        if (!ok || !std::isfinite(seconds) || std::fabs(seconds) > 1e9)
            problems->push_back(L"Event " + std::to_wstring(row + 1) +
                                L": the time is not a number of seconds.");
        const auto* state = qobject_cast<const QComboBox*>(m_events->cellWidget(row, kValveColumn));
        events.emplace_back(ok ? std::llround(seconds * 1000.0) : 0, state ? ComboValue(state) : 0);
    }
    method.SetEvents(events);
    return method;
}

void CVexaMethodWizard::UpdateRunTime() {
    std::vector<std::wstring> ignored;
    const VexaMethod method = MethodFromControls(&ignored);
    m_runTime->setText(
        tr("Run Time (M:S): %1").arg(QString::fromStdWString(FormatTimeSpan(method.GetRunTimeSeconds()))));
}

void CVexaMethodWizard::OnCommand(int id) {
    if (!m_events->RunRowCommand(id))
        CMethodFileDialog::OnCommand(id);
}

bool CVexaMethodWizard::WriteTo(const std::wstring& name) {
    std::vector<std::wstring> problems;
    const VexaMethod method = MethodFromControls(&problems);
    const std::vector<std::wstring> checks = method.CheckSettings();
    problems.insert(problems.end(), checks.begin(), checks.end());
    if (!SaveChecked(problems, [&](VexaFileRef& file) { return method.Save(file, name); }))
        return false;
    m_saved = method;
    m_shown = method;
    return true;
}

bool CVexaMethodWizard::HasChanges() const {
    std::vector<std::wstring> problems;
    return !(MethodFromControls(&problems) == m_shown);
}
