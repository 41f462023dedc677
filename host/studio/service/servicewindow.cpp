// SPDX-License-Identifier: Apache-2.0
#include "servicewindow.h"

#include "alarmtext.h"
#include "fileinfo.h"
#include "managedinstrument.h"
#include "prompt.h"
#include "remotename.h"
#include "sensormanager.h"
#include "sensorobject.h"
#include "systemaccess.h"
#include "text.h"
#include "vexadevice.h"
#include "wholefile.h"
#include "winsockerror.h"

#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
// The instrument's own configuration files, in its root folder.
const char* const kConfigurationFiles[] = {"hostname", "ip.addresses",  "hosts",
                                           "timezone", ".config.level", ".config.fp"};
const QString kLogFolder = QStringLiteral("/Log");
// Bigger files are not read whole to show a tail.
constexpr int64_t kMaxRead = 8 * 1024 * 1024;

QString LastLines(const QString& text, int count) {
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    if (lines.size() > count)
        lines = lines.mid(lines.size() - count);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QString FirstLine(const ServiceFile& file) {
    return file.error != 0 ? QString() : file.text.section(QLatin1Char('\n'), 0, 0).trimmed();
}
} // namespace

ServiceWindow::ServiceWindow(SensorManager& sensors, ManagedInstrument& instrument, QWidget* parent)
    : QWidget(parent, Qt::Window), m_sensors(sensors), m_instrument(&instrument) {
    setObjectName(QStringLiteral("serviceWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Service Module: %1").arg(instrument.Title()));
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);

    m_identity = new QLabel(this);
    m_identity->setObjectName(QStringLiteral("identity"));
    m_identity->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_configList = new QListWidget(this);
    m_configList->setObjectName(QStringLiteral("configurationFiles"));
    m_configList->setMaximumWidth(200);
    m_configView = new QPlainTextEdit(this);
    m_configView->setReadOnly(true);
    m_configView->setFont(fixed);
    m_editButton = new QPushButton(tr("Edit..."), this);
    m_editButton->setObjectName(QStringLiteral("editButton"));
    m_editButton->setToolTip(tr("Edits the file on the instrument (access level 0)."));
    auto* reloadFiles = new QPushButton(tr("Reload"), this);
    connect(m_configList, &QListWidget::currentRowChanged, this, &ServiceWindow::ShowConfigFile);
    connect(m_editButton, &QPushButton::clicked, this, &ServiceWindow::EditConfigFile);
    connect(reloadFiles, &QPushButton::clicked, this, &ServiceWindow::RefreshFiles);
    auto* configPage = new QWidget(this);
    auto* configButtons = new QVBoxLayout;
    configButtons->addWidget(m_configList, 1);
    configButtons->addWidget(m_editButton);
    configButtons->addWidget(reloadFiles);
    auto* configLayout = new QHBoxLayout(configPage);
    configLayout->addLayout(configButtons);
    configLayout->addWidget(m_configView, 1);

    m_alarms = new QTreeWidget(this);
    m_alarms->setObjectName(QStringLiteral("sessionAlarms"));
    m_alarms->setHeaderLabels({tr("Time"), tr("Alarm")});
    m_alarms->setRootIsDecorated(false);
    m_alarms->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_notifications = new QTreeWidget(this);
    m_notifications->setObjectName(QStringLiteral("notifications"));
    m_notifications->setHeaderLabels({tr("Time"), tr("Code"), tr("Text")});
    m_notifications->setRootIsDecorated(false);
    m_notifications->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_notifications->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    auto* sessionPage = new QSplitter(Qt::Vertical, this);
    sessionPage->addWidget(m_alarms);
    sessionPage->addWidget(m_notifications);

    m_logView = new QPlainTextEdit(this);
    m_logView->setObjectName(QStringLiteral("logTail"));
    m_logView->setReadOnly(true);
    m_logView->setFont(fixed);
    m_logView->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto* refreshLogs = new QPushButton(tr("Refresh"), this);
    refreshLogs->setObjectName(QStringLiteral("refreshLogs"));
    connect(refreshLogs, &QPushButton::clicked, this, &ServiceWindow::RefreshLogs);
    auto* logPage = new QWidget(this);
    auto* logLayout = new QVBoxLayout(logPage);
    logLayout->addWidget(m_logView, 1);
    logLayout->addWidget(refreshLogs, 0, Qt::AlignLeft);

    auto* tabs = new QTabWidget(this);
    tabs->addTab(configPage, tr("Configuration"));
    tabs->addTab(sessionPage, tr("Alarms and notifications"));
    tabs->addTab(logPage, tr("Logs"));

    auto* save = new QPushButton(tr("Save service report..."), this);
    save->setObjectName(QStringLiteral("saveReport"));
    connect(save, &QPushButton::clicked, this, &ServiceWindow::AskAndSaveReport);
    auto* close = new QPushButton(tr("Close"), this);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(save);
    buttons->addStretch(1);
    buttons->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_identity);
    layout->addWidget(tabs, 1);
    layout->addLayout(buttons);
    resize(900, 640);

    connect(&m_sensors, &SensorManager::instrumentChanged, this, [this](int row) {
        if (m_instrument && m_sensors.At(row) == m_instrument)
            RefreshSession();
    });
    connect(&m_sensors, &SensorManager::instrumentRemoved, this, [this] {
        if (!m_instrument || m_sensors.IndexOf(m_instrument) < 0)
            QWidget::close();
    });
    RefreshSession();
    RefreshFiles();
    RefreshLogs();
}

QString ServiceWindow::RemoteName(const QString& path) const {
    const QString folder = path.section(QLatin1Char('/'), 0, -2);
    return QString::fromStdWString(MakeFilename(folder.isEmpty() ? L"/" : folder.toStdWString(),
                                                path.section(QLatin1Char('/'), -1).toStdWString(),
                                                m_instrument->Config().address.toStdWString()));
}

ServiceFile ServiceWindow::ReadFile(const QString& path, bool tail) const {
    ServiceFile file{path, {}, 0};
    const ISensorObject* sensor = m_instrument->Sensor();
    if (!sensor || !sensor->IsOnline(false)) {
        file.error = kWsaNotConn;
        return file;
    }
    std::string bytes;
    WholeFileError error;
    if (!ReadWholeFile(RemoteName(path).toStdWString(), kMaxRead, &bytes, &error)) {
        file.error = error.number;
        return file;
    }
    file.text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    if (tail)
        file.text = LastLines(file.text, kLogTailLines);
    return file;
}

void ServiceWindow::RefreshSession() {
    if (!m_instrument)
        return;
    m_data.name = m_instrument->Config().name;
    m_data.address = m_instrument->Config().address;
    m_data.sensorType = m_instrument->Config().sensorType;
    m_data.state = m_instrument->StateText();
    if (ISensorObject* sensor = m_instrument->Sensor()) {
        const VexaDevice device(sensor->GetDevice(L"VEXA"));
        // The last status read stays known while the instrument is away.
        if (const std::wstring serial = device.getSerial(); !serial.empty())
            m_data.serial = QString::fromStdWString(serial);
        if (const std::wstring firmware = device.getFirmware(); !firmware.empty())
            m_data.firmware = QString::fromStdWString(firmware);
    }
    m_data.alarms = m_instrument->AlarmChanges();
    m_data.notifications.clear();
    for (const ManagedInstrument::Notification& notification : m_instrument->Notifications())
        m_data.notifications.append({notification.time, notification.code, notification.text});

    QString hostName, timeZone;
    for (const ServiceFile& file : std::as_const(m_data.configuration)) {
        if (file.path == QLatin1String("/hostname"))
            hostName = FirstLine(file);
        else if (file.path == QLatin1String("/timezone"))
            timeZone = FirstLine(file);
    }
    const auto row = [](const QString& label, const QString& value) {
        return QStringLiteral("<tr><td><b>%1</b>&nbsp;&nbsp;</td><td>%2</td></tr>")
            .arg(label.toHtmlEscaped(), value.isEmpty() ? QStringLiteral("&mdash;") : value.toHtmlEscaped());
    };
    m_identity->setText(QStringLiteral("<table>") + row(tr("Instrument"), m_data.name) +
                        row(tr("Address"), m_data.address) + row(tr("State"), m_data.state) +
                        row(tr("Serial"), m_data.serial) + row(tr("Firmware"), m_data.firmware) +
                        row(tr("Host name"), hostName) + row(tr("Time zone"), timeZone) +
                        QStringLiteral("</table>"));

    m_alarms->clear();
    for (const AlarmChange& change : std::as_const(m_data.alarms))
        new QTreeWidgetItem(
            m_alarms, {QDateTime::fromMSecsSinceEpoch(change.timeMs).toString(QStringLiteral("HH:mm:ss")),
                       AlarmText::Change(change)});
    if (m_notifications->topLevelItemCount() != m_data.notifications.size()) {
        m_notifications->clear();
        for (const ServiceNotification& notification : std::as_const(m_data.notifications))
            new QTreeWidgetItem(m_notifications, {notification.time.toString(QStringLiteral("HH:mm:ss")),
                                                  QString::number(notification.code), notification.text});
    }
}

void ServiceWindow::RefreshFiles() {
    if (!m_instrument)
        return;
    const int current = qMax(0, m_configList->currentRow());
    m_data.configuration.clear();
    for (const char* name : kConfigurationFiles)
        m_data.configuration.append(ReadFile(QStringLiteral("/") + QLatin1String(name), false));
    QSignalBlocker block(m_configList);
    m_configList->clear();
    for (const ServiceFile& file : std::as_const(m_data.configuration))
        m_configList->addItem(file.path.mid(1));
    m_configList->setCurrentRow(current);
    ShowConfigFile();
    RefreshSession();
}

void ServiceWindow::ShowConfigFile() {
    const int row = m_configList->currentRow();
    if (row < 0 || row >= m_data.configuration.size()) {
        m_configView->clear();
        m_editButton->setEnabled(false);
        return;
    }
    const ServiceFile& file = m_data.configuration[row];
    m_configView->setPlainText(file.error != 0 ? ServiceReport::FileProblem(file.error) : file.text);
    const bool online = m_instrument && m_instrument->GetState() == ManagedInstrument::State::Online;
    m_editButton->setEnabled(online && CSystemAccess::Accessible(0));
}

void ServiceWindow::EditConfigFile() {
    const int row = m_configList->currentRow();
    if (!m_instrument || row < 0 || row >= m_data.configuration.size())
        return;
    ISensorObject* sensor = m_instrument->Sensor();
    if (!sensor)
        return;
    if (sensor->EditTextFile(RemoteName(m_data.configuration[row].path).toStdWString()))
        RefreshFiles();
}

void ServiceWindow::RefreshLogs() {
    if (!m_instrument)
        return;
    m_data.logs.clear();
    const ISensorObject* sensor = m_instrument->Sensor();
    std::vector<FileInfo> entries;
    if (!sensor || !sensor->IsOnline(false)) {
        m_data.logs.append({kLogFolder + QStringLiteral("/*.log"), {}, kWsaNotConn});
    } else if (!FileInfo::ReadSensorDir(m_instrument->Config().address.toStdWString(),
                                        kLogFolder.toStdWString(), entries, L"*.log", 0)) {
        m_data.logs.append({kLogFolder + QStringLiteral("/*.log"), {}, FileInfo::LastError()});
    }
    for (const FileInfo& entry : entries) {
        // The listing passes folders (and "..") whatever the pattern; a negative size marks them too.
        if (!entry.IsFolder() && entry.size >= 0)
            m_data.logs.append(
                ReadFile(kLogFolder + QLatin1Char('/') + QString::fromStdWString(entry.name), true));
    }
    ShowLogs();
}

void ServiceWindow::ShowLogs() {
    QString text;
    for (const ServiceFile& file : std::as_const(m_data.logs)) {
        text += QStringLiteral("--- %1 ---\n").arg(file.path);
        text += file.error != 0 ? ServiceReport::FileProblem(file.error) + QLatin1Char('\n') : file.text;
    }
    if (m_data.logs.isEmpty())
        text = tr("No logs in %1.").arg(kLogFolder);
    m_logView->setPlainText(text);
    m_logView->moveCursor(QTextCursor::End);
}

bool ServiceWindow::SaveReport(const QString& path) {
    RefreshSession();
    QString problem;
    if (ServiceReport::Save(path, ServiceReport::Text(m_data, QDateTime::currentDateTime()), &problem))
        return true;
    Prompt().Message(
        tr("The service report could not be written to %1: %2").arg(path, problem).toStdWString(),
        windowTitle().toStdWString(), PromptIcon::Error, this);
    return false;
}

void ServiceWindow::AskAndSaveReport() {
    const QString suggested = QDir::home().filePath(
        QStringLiteral("%1-service-%2.txt")
            .arg(m_data.name, QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmm"))));
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Save service report"), suggested, tr("Text files (*.txt)"));
    if (!path.isEmpty())
        SaveReport(path);
}
