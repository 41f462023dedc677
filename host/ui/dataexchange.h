// SPDX-License-Identifier: Apache-2.0
#pragma once
// Dialog data exchange: moving values between a dialog's members and its controls, in the direction
// UpdateData asks for. A dialog lists its exchanges in DoDataExchange; each helper works both ways.
#include <QPointer>
#include <QWidget>

#include <string>

class CDialog_;

class CDataExchange {
public:
    CDataExchange(CDialog_& dialog, bool saveAndValidate)
        : m_dialog(dialog), m_saveAndValidate(saveAndValidate) {}

    CDialog_& Dialog() const { return m_dialog; }
    // True: controls -> members (and validate); false: members -> controls.
    bool IsSaving() const { return m_saveAndValidate; }
    // A control is missing or a value did not validate; UpdateData then returns false. When
    // `control` is given it receives the focus, so the user sees what to correct.
    void Fail(QWidget* control = nullptr);
    bool Failed() const { return m_failed; }

private:
    CDialog_& m_dialog;
    bool m_saveAndValidate;
    bool m_failed = false;
};

// The control with that identifier, or null after failing the exchange.
QWidget* DDX_FindControl(CDataExchange& dx, int id);

// Text of a label, edit (single or multi-line), button or combo box.
void DDX_Text(CDataExchange& dx, int id, std::wstring& value);
// A decimal integer; a text that is not one fails the exchange with a message when saving.
void DDX_Text(CDataExchange& dx, int id, int& value);

// Binds a member pointer to the control (any direction); fails when the control is missing or not
// of that class.
template <class Control> void DDX_Control(CDataExchange& dx, int id, Control*& control) {
    if (control)
        return;
    QWidget* found = DDX_FindControl(dx, id);
    if (!found)
        return;
    control = qobject_cast<Control*>(found);
    if (!control)
        dx.Fail();
}
