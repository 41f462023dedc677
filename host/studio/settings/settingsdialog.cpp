// SPDX-License-Identifier: Apache-2.0
#include "settingsdialog.h"

#include "prompt.h"
#include "registry.h"
#include "systemaccess.h"
#include "winsockerror.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {
constexpr int kErrorNotFound = 2;

QString DefaultText(const SettingEntry& entry) {
    if (!entry.defaultNote.isEmpty())
        return entry.defaultNote;
    if (entry.kind == SettingEntry::Kind::Flag)
        return entry.defaultValue == QLatin1String("1") ? QObject::tr("on") : QObject::tr("off");
    return entry.defaultValue.isEmpty() ? QObject::tr("none") : entry.defaultValue;
}

QString ProgramResult(int error, const QString& program) {
    return QObject::tr("Error %1: %2").arg(QString::fromStdWString(DescribeError(error)), program);
}
} // namespace

SettingsDialog::SettingsDialog(CPXRegistry& registry, QWidget* parent)
    : QDialog(parent), m_registry(registry) {
    setObjectName(QStringLiteral("settingsDialog"));
    setWindowTitle(tr("Settings"));
    m_registry.Reload();

    auto* layout = new QVBoxLayout(this);
    auto* columns = new QHBoxLayout;
    QVBoxLayout* column = nullptr;
    QGroupBox* box = nullptr;
    QFormLayout* form = nullptr;
    int groups = 0;
    for (const SettingEntry& entry : StudioSettings::Entries()) {
        if (!box || box->title() != entry.group) {
            // External programs fill the left column, the rest the right.
            if (!column || groups == 1) {
                column = new QVBoxLayout;
                columns->addLayout(column, 1);
            }
            box = new QGroupBox(entry.group, this);
            form = new QFormLayout(box);
            column->addWidget(box);
            ++groups;
        }
        QWidget* editor = MakeEditor(entry);
        editor->setObjectName(entry.Path());
        editor->setToolTip(QStringLiteral("%1\n%2: %3\n%4")
                               .arg(entry.help, tr("Default"), DefaultText(entry), entry.Path()));
        m_editors.insert(entry.Path(), editor);
        form->addRow(entry.label, WithButtons(entry, editor));
    }
    column->addStretch(1);

    const QString file = QString::fromStdString(m_registry.Path());
    auto* fileLabel = new QLabel(tr("Settings file: %1").arg(file), this);
    fileLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SettingsDialog::reject);
    layout->addLayout(columns, 1);
    layout->addWidget(fileLabel);
    layout->addWidget(buttons);
}

QWidget* SettingsDialog::MakeEditor(const SettingEntry& entry) {
    using Kind = SettingEntry::Kind;
    const QString value = StudioSettings::Value(m_registry, entry);
    switch (entry.kind) {
    case Kind::Flag: {
        auto* check = new QCheckBox(this);
        check->setChecked(value.trimmed() == QLatin1String("1"));
        return check;
    }
    case Kind::Integer: {
        auto* spin = new QSpinBox(this);
        spin->setRange(static_cast<int>(entry.minimum), static_cast<int>(entry.maximum));
        bool ok = false;
        const int number = value.trimmed().toInt(&ok);
        spin->setValue(ok ? number : entry.defaultValue.toInt());
        return spin;
    }
    case Kind::Number: {
        // Limits span decades (a pressure in Pa): typed as text, checked on save.
        auto* edit = new QLineEdit(value, this);
        edit->setPlaceholderText(entry.defaultValue);
        return edit;
    }
    case Kind::AccessLevels: {
        auto* edit = new QLineEdit(value, this);
        edit->setPlaceholderText(entry.defaultValue);
        // Only a user who already has the changing level may change who has it.
        edit->setReadOnly(!CSystemAccess::Accessible(1));
        edit->setEnabled(CSystemAccess::Accessible(1));
        return edit;
    }
    case Kind::Text:
    case Kind::Program:
    case Kind::Folder:
    case Kind::File:
        break;
    }
    auto* edit = new QLineEdit(value, this);
    edit->setPlaceholderText(DefaultText(entry));
    return edit;
}

QWidget* SettingsDialog::WithButtons(const SettingEntry& entry, QWidget* editor) {
    using Kind = SettingEntry::Kind;
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(editor, 1);
    const QString path = entry.Path();
    if (entry.kind == Kind::Program || entry.kind == Kind::Folder || entry.kind == Kind::File) {
        auto* browse = new QPushButton(tr("..."), row);
        browse->setObjectName(QStringLiteral("browse-") + path);
        browse->setMaximumWidth(32);
        connect(browse, &QPushButton::clicked, this, [this, path, kind = entry.kind] {
            const QString current = EditedValue(path);
            const QString chosen =
                kind == Kind::Folder ? QFileDialog::getExistingDirectory(this, tr("Choose a folder"), current)
                                     : QFileDialog::getOpenFileName(this, tr("Choose a file"), current);
            if (!chosen.isEmpty())
                SetEditedValue(path, QDir::toNativeSeparators(chosen));
        });
        layout->addWidget(browse);
    }
    if (entry.kind == Kind::Program) {
        auto* test = new QPushButton(tr("Test"), row);
        test->setObjectName(QStringLiteral("test-") + path);
        connect(test, &QPushButton::clicked, this, [this, path] { TestProgram(path); });
        layout->addWidget(test);
        auto* result = new QLabel(row);
        result->setObjectName(QStringLiteral("result-") + path);
        result->setWordWrap(true);
        result->setMinimumWidth(160);
        m_testResults.insert(path, result);
        layout->addWidget(result, 1);
    }
    if (entry.kind == Kind::AccessLevels) {
        const QString now = CSystemAccess::Accessible(0) && CSystemAccess::Accessible(1) ? tr("0 and 1")
                            : CSystemAccess::Accessible(1)                               ? tr("1")
                            : CSystemAccess::Accessible(0)                               ? tr("0")
                                                                                         : tr("none");
        QString text = tr("You have: %1").arg(now);
        if (qEnvironmentVariableIsSet("VEXA_ACCESS"))
            text += tr(" (from VEXA_ACCESS)");
        auto* granted = new QLabel(text, row);
        granted->setObjectName(QStringLiteral("grantedLevels"));
        layout->addWidget(granted);
    }
    return row;
}

QString SettingsDialog::EditedValue(const QString& path) const {
    QWidget* editor = Editor(path);
    if (auto* check = qobject_cast<QCheckBox*>(editor))
        return check->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
    if (auto* spin = qobject_cast<QSpinBox*>(editor))
        return QString::number(spin->value());
    if (auto* edit = qobject_cast<QLineEdit*>(editor))
        return edit->text().trimmed();
    return {};
}

void SettingsDialog::SetEditedValue(const QString& path, const QString& value) {
    QWidget* editor = Editor(path);
    if (auto* check = qobject_cast<QCheckBox*>(editor))
        check->setChecked(value == QLatin1String("1"));
    else if (auto* spin = qobject_cast<QSpinBox*>(editor))
        spin->setValue(value.toInt());
    else if (auto* edit = qobject_cast<QLineEdit*>(editor))
        edit->setText(value);
}

QString SettingsDialog::TestResult(const QString& path) const {
    const QLabel* label = m_testResults.value(path);
    return label ? label->text() : QString();
}

void SettingsDialog::TestProgram(const QString& path) {
    QLabel* result = m_testResults.value(path);
    if (!result)
        return;
    QString program = EditedValue(path);
    const bool isOpener = path == QLatin1String("Programs/Opener");
    if (program.isEmpty() && isOpener) {
#if defined(_WIN32)
        program = QStringLiteral("explorer");
#else
        program = QStringLiteral("xdg-open");
#endif
    }
    if (program.isEmpty()) {
        result->setText(tr("Not configured."));
        return;
    }
    const QString found = QFileInfo(program).isAbsolute()
                              ? (QFileInfo(program).isExecutable() ? program : QString())
                              : QStandardPaths::findExecutable(program);
    if (found.isEmpty()) {
        result->setText(ProgramResult(kErrorNotFound, program));
        return;
    }
    // The opener is shown the home folder; the others start as their tools start them, without texts.
    QStringList arguments;
    if (isOpener)
        arguments << QDir::homePath();
    qint64 pid = 0;
    if (!QProcess::startDetached(found, arguments, QString(), &pid)) {
        result->setText(ProgramResult(kErrorNotFound, found));
        return;
    }
    result->setText(tr("Started %1 (process %2).").arg(found).arg(pid));
}

bool SettingsDialog::Save() {
    for (const SettingEntry& entry : StudioSettings::Entries()) {
        const QString path = entry.Path();
        if (entry.kind == SettingEntry::Kind::Number) {
            bool ok = false;
            const double number = EditedValue(path).toDouble(&ok);
            if (!EditedValue(path).isEmpty() && (!ok || number < entry.minimum || number > entry.maximum)) {
                Prompt().Message(
                    tr("%1 must be a number from %2 to %3.")
                        .arg(entry.label, QString::number(entry.minimum), QString::number(entry.maximum))
                        .toStdWString(),
                    windowTitle().toStdWString(), PromptIcon::Warning, this);
                Editor(path)->setFocus();
                return false;
            }
        }
    }
    for (const SettingEntry& entry : StudioSettings::Entries()) {
        const QString path = entry.Path();
        if (entry.kind == SettingEntry::Kind::AccessLevels && !CSystemAccess::Accessible(1))
            continue;
        const QString edited = EditedValue(path);
        if (edited == StudioSettings::Value(m_registry, entry))
            continue;
        const std::wstring section = entry.section.toStdWString();
        const std::wstring key = entry.key.toStdWString();
        const bool ok = edited.isEmpty() && entry.defaultValue.isEmpty()
                            ? m_registry.Remove(section, key)
                            : m_registry.SetString(section, key, edited.toStdWString());
        if (!ok) {
            Prompt().Message(tr("The settings could not be written to %1.")
                                 .arg(QString::fromStdString(m_registry.Path()))
                                 .toStdWString(),
                             windowTitle().toStdWString(), PromptIcon::Error, this);
            return false;
        }
    }
    return true;
}

void SettingsDialog::accept() {
    if (Save())
        QDialog::accept();
}
