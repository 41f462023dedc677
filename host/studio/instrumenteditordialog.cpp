// SPDX-License-Identifier: Apache-2.0
#include "instrumenteditordialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

InstrumentEditorDialog::InstrumentEditorDialog(const QList<TypeChoice>& types, Validator validator,
                                               QWidget* parent)
    : QDialog(parent), m_validator(std::move(validator)) {
    setObjectName(QStringLiteral("instrumentEditor"));
    setWindowTitle(tr("Instrument"));

    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("instrumentName"));
    m_name->setPlaceholderText(tr("for example: Field unit 1"));
    m_address = new QLineEdit(this);
    m_address->setObjectName(QStringLiteral("instrumentAddress"));
    m_address->setPlaceholderText(tr("IPv4 address or host name, for example 192.168.0.20"));
    m_type = new QComboBox(this);
    m_type->setObjectName(QStringLiteral("instrumentType"));
    for (const TypeChoice& type : types) {
        const QString text = type.displayName.isEmpty() || type.displayName == type.shortName
                                 ? type.shortName
                                 : QStringLiteral("%1 (%2)").arg(type.displayName, type.shortName);
        m_type->addItem(text, type.shortName);
    }

    m_error = new QLabel(this);
    m_error->setObjectName(QStringLiteral("instrumentError"));
    m_error->setWordWrap(true);
    m_error->setStyleSheet(QStringLiteral("color: #b00020;"));
    m_error->hide();

    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    form->addRow(tr("&Address:"), m_address);
    form->addRow(tr("Sensor &type:"), m_type);

    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &InstrumentEditorDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &InstrumentEditorDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_error);
    layout->addWidget(m_buttons);
    setMinimumWidth(420);
}

void InstrumentEditorDialog::SetConfig(const InstrumentConfig& config) {
    m_name->setText(config.name);
    m_address->setText(config.address);
    int index = m_type->findData(config.sensorType);
    if (index < 0) {
        // A saved instrument of a type whose module is not loaded keeps its type.
        m_type->addItem(tr("%1 (module not loaded)").arg(config.sensorType), config.sensorType);
        index = m_type->count() - 1;
    }
    m_type->setCurrentIndex(index);
}

InstrumentConfig InstrumentEditorDialog::Config() const {
    InstrumentConfig config;
    config.name = m_name->text().trimmed();
    config.address = m_address->text().trimmed();
    config.sensorType = m_type->currentData().toString();
    return config;
}

QString InstrumentEditorDialog::ErrorText() const {
    return m_error->isHidden() ? QString() : m_error->text();
}

void InstrumentEditorDialog::accept() {
    const InstrumentConfig config = Config();
    const Problem problem = m_validator ? m_validator(config) : Problem{};
    if (!problem.text.isEmpty()) {
        ShowError(problem);
        return;
    }
    m_error->clear();
    m_error->hide();
    QDialog::accept();
}

void InstrumentEditorDialog::ShowError(const Problem& problem) {
    m_error->setText(problem.text);
    m_error->show();
    switch (problem.field) {
    case Problem::Field::Name:
        m_name->setFocus();
        m_name->selectAll();
        break;
    case Problem::Field::Address:
        m_address->setFocus();
        m_address->selectAll();
        break;
    case Problem::Field::Type:
        m_type->setFocus();
        break;
    }
}
