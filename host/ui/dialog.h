// SPDX-License-Identifier: Apache-2.0
#pragma once
// The host's dialog base. A dialog is built from a compiled Qt Designer template whose controls carry
// their numeric identifier in the dynamic property `ctrlId`; code finds them by that number, moves
// data with DoDataExchange/UpdateData, loads texts by string identifier and ends with EndDialog.
//
// Life of a modal run: DoModal() calls OnInitDialog() once (also when the dialog is shown some other
// way first), then runs the modal loop until EndDialog(). Buttons with a `ctrlId` call OnCommand(id);
// IDOK (1) goes to OnOK(), IDCANCEL (2), Escape and the close box go to OnCancel().
//
// Running a dialog in a test without blocking: schedule the user's actions before the modal run, e.g.
//     QTimer::singleShot(0, &dlg, [&] {
//         QTest::keyClicks(dlg.GetDlgItem(IDC_NAME), "abc");
//         dlg.PressButton(IDOK);
//     });
//     QCOMPARE(dlg.DoModal(), IDOK);
// or call open() and drive the dialog from the test itself. A ScriptedPrompt (scriptedprompt.h) can
// also answer whole dialogs; dialogs opened by the code under test are answered that way.
#include "dataexchange.h"
#include "hostresource.h"
#include "prompt.h"
#include "pxformat.h"

#include <QDialog>
#include <QHash>
#include <QPointer>
#include <QSet>

#include <cstdint>
#include <string>

class CDialog_ : public QDialog {
    Q_OBJECT
public:
    explicit CDialog_(int templateId = 0, QWidget* parent = nullptr);
    ~CDialog_() override;

    // The dialog template's resource identifier (0: none).
    int TemplateId() const { return m_templateId; }

    // Runs the dialog modally; returns the code given to EndDialog (IDOK, IDCANCEL, ...), or -1 when a
    // scripted answer pressed a button that did not end the dialog.
    virtual int DoModal();
    // Ends the modal run (or the coming one, when called from OnInitDialog) with `code`.
    void EndDialog(int code);
    // Whether EndDialog was called since the dialog was last started.
    bool HasEnded() const { return m_ended; }

    // ---- controls by identifier ----
    QWidget* GetDlgItem(int id) const;
    std::wstring GetDlgItemText(int id) const;
    bool SetDlgItemText(int id, const std::wstring& text);
    void EnableControl(int id, bool enable);
    void ShowControl(int id, bool show);
    // Clicks the button with that identifier, as the user would; false when it is missing or disabled.
    bool PressButton(int id);
    void SetWindowText(const std::wstring& text);

    // Moves data between members and controls: `save` true reads the controls. False when an exchange
    // failed (the member values are then partly updated).
    bool UpdateData(bool save = true);

    // ---- texts ----
    static std::wstring LoadString(uint32_t id);
    static QString LoadQString(uint32_t id);
    // The string `id` with message-table inserts (%1!s!, %2!d!): wide strings as const wchar_t*.
    template <class... Args> static std::wstring FormatString(uint32_t id, Args... args) {
        return PXFormatMessage(LoadString(id).c_str(), args...);
    }

    // ---- questions through the installed prompt ----
    int AskYesNo(const std::wstring& text, const std::wstring& caption = {});
    void ShowMessage(const std::wstring& text, const std::wstring& caption = {},
                     PromptIcon icon = PromptIcon::Information);

    // False for windows that only show progress: they never go through a prompt's RunModal.
    bool AsksUser() const { return m_asksUser; }

    // QDialog's own ends, routed to OnOK/OnCancel.
    void accept() override;
    void reject() override;
    void done(int code) override;

signals:
    // A button with an identifier other than IDOK/IDCANCEL was clicked.
    void command(int id);

protected:
    // Installs the compiled template (a uic class) into this dialog.
    template <class Form> void SetupTemplate(Form& form) {
        form.setupUi(this);
        ConnectControls();
    }
    // Call after adding controls with a `ctrlId` by hand.
    void ConnectControls();

    virtual void DoDataExchange(CDataExchange& dx);
    // Once, before the dialog is first shown. The base pushes the members to the controls.
    virtual bool OnInitDialog();
    virtual void OnOK();
    virtual void OnCancel();
    virtual void OnCommand(int id);

    void SetAsksUser(bool asks) { m_asksUser = asks; }
    void showEvent(QShowEvent* event) override;

private:
    void EnsureInitialized();
    void IndexControl(QWidget* control, int id);

    int m_templateId;
    bool m_initialized = false;
    bool m_ended = false;
    bool m_initializing = false;
    bool m_asksUser = true;
    int m_endCode = IDCANCEL;
    mutable QHash<int, QPointer<QWidget>> m_controls;
    QSet<const QObject*> m_connectedButtons;
};
