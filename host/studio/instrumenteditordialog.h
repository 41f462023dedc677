// SPDX-License-Identifier: Apache-2.0
#pragma once
// Adds or edits one instrument: name, address and sensor type. OK is refused, with the reason shown
// in the dialog, while the validator finds a fault (a malformed address, a name already in use).
#include "instrumentconfig.h"

#include <QDialog>

#include <functional>

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;

class InstrumentEditorDialog : public QDialog {
    Q_OBJECT
public:
    using Problem = InstrumentProblem;
    using Validator = std::function<Problem(const InstrumentConfig&)>;
    // A sensor type offered in the type box: its short name and the text shown for it.
    struct TypeChoice {
        QString shortName;
        QString displayName;
    };

    InstrumentEditorDialog(const QList<TypeChoice>& types, Validator validator, QWidget* parent = nullptr);

    void SetConfig(const InstrumentConfig& config);
    // The entry as typed (trimmed).
    InstrumentConfig Config() const;
    // The reason the last OK was refused; empty when none.
    QString ErrorText() const;

    QLineEdit* NameEdit() const { return m_name; }
    QLineEdit* AddressEdit() const { return m_address; }

public slots:
    void accept() override;

private:
    void ShowError(const Problem& problem);

    Validator m_validator;
    QLineEdit* m_name;
    QLineEdit* m_address;
    QComboBox* m_type;
    QLabel* m_error;
    QDialogButtonBox* m_buttons;
};
