// SPDX-License-Identifier: Apache-2.0
#include "dialog.h"

#include "controltext.h"
#include "prompt.h"
#include "pxresource.h"

#include <QAbstractButton>
#include <QMetaObject>
#include <QVariant>

namespace {

const char kCtrlIdProperty[] = "ctrlId";

// The identifier a template gave a widget, 0 when it has none.
int ControlId(const QWidget* widget) {
    bool ok = false;
    const int id = widget->property(kCtrlIdProperty).toInt(&ok);
    return ok ? id : 0;
}

} // namespace

CDialog_::CDialog_(int templateId, QWidget* parent) : QDialog(parent), m_templateId(templateId) {}

CDialog_::~CDialog_() = default;

int CDialog_::DoModal() {
    // Each modal run is a fresh window in the suite's sense: it is initialised again.
    m_initialized = false;
    m_ended = false;
    m_endCode = IDCANCEL;
    EnsureInitialized();
    if (m_ended)
        return m_endCode;
    if (m_asksUser) {
        if (std::optional<int> answer = Prompt().RunModal(*this)) {
            hide();
            return *answer;
        }
    }
    const int code = exec();
    return m_ended ? m_endCode : code;
}

void CDialog_::EndDialog(int code) {
    if (m_initializing) {
        m_ended = true;
        m_endCode = code;
        setResult(code);
        // Shown by show()/open()/exec(): the modal loop is not running yet, so end it once it is.
        if (isVisible())
            QMetaObject::invokeMethod(
                this, [this, code] { done(code); }, Qt::QueuedConnection);
        return;
    }
    if (isVisible()) {
        done(code);
        return;
    }
    m_ended = true;
    m_endCode = code;
    setResult(code);
}

void CDialog_::done(int code) {
    m_ended = true;
    m_endCode = code;
    QDialog::done(code);
}

void CDialog_::accept() {
    OnOK();
}

void CDialog_::reject() {
    OnCancel();
}

QWidget* CDialog_::GetDlgItem(int id) const {
    if (QWidget* known = m_controls.value(id).data())
        return known;
    const QList<QWidget*> children = findChildren<QWidget*>();
    for (QWidget* child : children) {
        if (ControlId(child) == id) {
            m_controls.insert(id, child);
            return child;
        }
    }
    return nullptr;
}

std::wstring CDialog_::GetDlgItemText(int id) const {
    const QWidget* control = GetDlgItem(id);
    return control ? GetControlText(control).toStdWString() : std::wstring();
}

bool CDialog_::SetDlgItemText(int id, const std::wstring& text) {
    QWidget* control = GetDlgItem(id);
    return control && SetControlText(control, QString::fromStdWString(text));
}

void CDialog_::EnableControl(int id, bool enable) {
    if (QWidget* control = GetDlgItem(id))
        control->setEnabled(enable);
}

void CDialog_::ShowControl(int id, bool show) {
    if (QWidget* control = GetDlgItem(id))
        control->setVisible(show);
}

bool CDialog_::PressButton(int id) {
    auto* button = qobject_cast<QAbstractButton*>(GetDlgItem(id));
    if (!button || !button->isEnabled())
        return false;
    button->click();
    return true;
}

void CDialog_::SetWindowText(const std::wstring& text) {
    setWindowTitle(QString::fromStdWString(text));
}

bool CDialog_::UpdateData(bool save) {
    CDataExchange dx(*this, save);
    DoDataExchange(dx);
    return !dx.Failed();
}

std::wstring CDialog_::LoadString(uint32_t id) {
    return PXLoadCString(static_cast<int>(id));
}

QString CDialog_::LoadQString(uint32_t id) {
    return QString::fromStdWString(LoadString(id));
}

int CDialog_::AskYesNo(const std::wstring& text, const std::wstring& caption) {
    return Prompt().AskYesNo(text, caption, this);
}

void CDialog_::ShowMessage(const std::wstring& text, const std::wstring& caption, PromptIcon icon) {
    Prompt().Message(text, caption, icon, this);
}

void CDialog_::ConnectControls() {
    const QList<QWidget*> children = findChildren<QWidget*>();
    for (QWidget* child : children) {
        const int id = ControlId(child);
        if (id != 0)
            IndexControl(child, id);
    }
}

void CDialog_::IndexControl(QWidget* control, int id) {
    m_controls.insert(id, control);
    auto* button = qobject_cast<QAbstractButton*>(control);
    if (!button || m_connectedButtons.contains(button))
        return;
    m_connectedButtons.insert(button);
    connect(button, &QAbstractButton::clicked, this, [this, id] { OnCommand(id); });
}

void CDialog_::DoDataExchange(CDataExchange&) {}

bool CDialog_::OnInitDialog() {
    UpdateData(false);
    return true;
}

void CDialog_::OnOK() {
    if (!UpdateData(true))
        return;
    EndDialog(IDOK);
}

void CDialog_::OnCancel() {
    EndDialog(IDCANCEL);
}

void CDialog_::OnCommand(int id) {
    if (id == IDOK)
        OnOK();
    else if (id == IDCANCEL)
        OnCancel();
    else
        emit command(id);
}

void CDialog_::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_initialized)
        m_ended = false;
    EnsureInitialized();
}

void CDialog_::EnsureInitialized() {
    if (m_initialized)
        return;
    m_initialized = true;
    m_initializing = true;
    OnInitDialog();
    m_initializing = false;
}
