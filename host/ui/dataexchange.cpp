// SPDX-License-Identifier: Apache-2.0
#include "dataexchange.h"

#include "controltext.h"
#include "dialog.h"
#include "prompt.h"

#include <QDebug>

void CDataExchange::Fail(QWidget* control) {
    m_failed = true;
    if (control)
        control->setFocus();
}

QWidget* DDX_FindControl(CDataExchange& dx, int id) {
    QWidget* control = dx.Dialog().GetDlgItem(id);
    if (!control) {
        qWarning() << "dialog" << dx.Dialog().TemplateId() << "has no control" << id;
        dx.Fail();
    }
    return control;
}

void DDX_Text(CDataExchange& dx, int id, std::wstring& value) {
    QWidget* control = DDX_FindControl(dx, id);
    if (!control)
        return;
    if (dx.IsSaving())
        value = GetControlText(control).toStdWString();
    else
        SetControlText(control, QString::fromStdWString(value));
}

void DDX_Text(CDataExchange& dx, int id, int& value) {
    QWidget* control = DDX_FindControl(dx, id);
    if (!control)
        return;
    if (!dx.IsSaving()) {
        SetControlText(control, QString::number(value));
        return;
    }
    bool ok = false;
    const int parsed = GetControlText(control).trimmed().toInt(&ok);
    if (!ok) {
        Prompt().Message(L"Please enter an integer.", {}, PromptIcon::Warning, &dx.Dialog());
        dx.Fail(control);
        return;
    }
    value = parsed;
}
