// SPDX-License-Identifier: Apache-2.0
#include "runreviewpage.h"

#include "chromatogramview.h"
#include "spectrumview.h"
#include "vexadatafile.h"
#include "vexarunfacts.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {
// Trace colours after the TIC's black, distinct on screen and in print.
const QColor kTraceColours[] = {QColor(0xd6, 0x27, 0x28), QColor(0x1f, 0x77, 0xb4), QColor(0x2c, 0xa0, 0x2c),
                                QColor(0x94, 0x67, 0xbd), QColor(0xff, 0x7f, 0x0e), QColor(0x8c, 0x56, 0x4b),
                                QColor(0xe3, 0x77, 0xc2), QColor(0x17, 0xbe, 0xcf)};
constexpr double kDefaultTolerance = 0.5;
constexpr double kLowestMass = VexaDataFile::kMinMass;
constexpr double kHighestMass = VexaDataFile::kMaxMass;

QString Minutes(double seconds) {
    return QString::number(seconds / 60.0, 'f', 2);
}

QString MassText(double mass) {
    return std::abs(mass - std::round(mass)) < 1e-6 ? QString::number(mass, 'f', 0) : QString::number(mass);
}
} // namespace

RunReviewPage::RunReviewPage(std::wstring fileName, std::wstring sourceName, VexaRun run, QWidget* parent)
    : QWidget(parent), m_fileName(std::move(fileName)), m_sourceName(std::move(sourceName)),
      m_run(std::move(run)) {
    m_chromatogram = new ChromatogramView(this);
    m_spectrum = new SpectrumView(this);
    m_chromatogram->setObjectName("chromatogram");
    m_spectrum->setObjectName("spectrum");

    auto* lower = new QSplitter(Qt::Horizontal);
    lower->addWidget(m_spectrum);
    lower->addWidget(BuildSidePanel());
    lower->setStretchFactor(0, 3);
    lower->setStretchFactor(1, 1);
    auto* split = new QSplitter(Qt::Vertical);
    split->addWidget(m_chromatogram);
    split->addWidget(lower);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(split);

    if (!m_run.HasSpectra()) {
        const QString text = tr("This is a version-1 data file: it records %n scan(s) but holds no spectra.",
                                nullptr, static_cast<int>(m_run.ScanCount()));
        m_chromatogram->SetEmptyText(text);
        m_spectrum->ClearSpectrum(text);
        return;
    }
    m_times.reserve(m_run.ScanCount());
    for (size_t scan = 0; scan < m_run.ScanCount(); ++scan)
        m_times.push_back(m_run.TimeSeconds(scan));
    const auto [low, high] = m_run.MassRange();
    m_spectrum->SetMassRange({low, high});
    m_chromatogram->SetEmptyText(tr("The file holds no scans."));
    m_spectrum->ClearSpectrum(tr("Click the chromatogram for the spectrum of a scan, or drag across it for "
                                 "the average of a range (Shift+drag marks a background range)."));
    AddTicTrace();

    connect(m_chromatogram, &PlotCanvas::Picked, this, &RunReviewPage::ShowScanAt);
    connect(m_chromatogram, &PlotCanvas::RangeDragged, this, &RunReviewPage::ShowRange);
    connect(m_chromatogram, &PlotCanvas::BackgroundDragged, this, [this](double lo, double hi) {
        SetBackground(PlotRange{lo, hi});
    });
}

QWidget* RunReviewPage::BuildSidePanel() {
    auto* panel = new QWidget;
    panel->setMinimumWidth(340);
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(4, 0, 0, 0);

    auto* factsBox = new QGroupBox(tr("Run"));
    auto* form = new QFormLayout(factsBox);
    FillFacts(form);
    column->addWidget(factsBox);

    auto* ionsBox = new QGroupBox(tr("Extracted ions"));
    auto* ions = new QVBoxLayout(ionsBox);
    auto* row = new QHBoxLayout;
    m_ionEdit = new QLineEdit;
    m_ionEdit->setObjectName("ionMasses");
    m_ionEdit->setPlaceholderText(tr("m/z, e.g. 91 or 78, 91"));
    m_tolerance = new QDoubleSpinBox;
    m_tolerance->setObjectName("ionTolerance");
    m_tolerance->setRange(0.01, 5.0);
    m_tolerance->setSingleStep(0.1);
    m_tolerance->setValue(kDefaultTolerance);
    m_tolerance->setPrefix(QStringLiteral("± "));
    m_addIons = new QPushButton(tr("Add"));
    m_addIons->setObjectName("addIons");
    row->addWidget(m_ionEdit, 1);
    row->addWidget(m_tolerance);
    row->addWidget(m_addIons);
    ions->addLayout(row);
    auto* hint = new QLabel(tr("One trace per entry; \"78, 91\" sums both m/z in one trace."));
    hint->setWordWrap(true);
    ions->addWidget(hint);
    m_traceList = new QListWidget;
    m_traceList->setObjectName("traces");
    m_traceList->setMaximumHeight(90);
    ions->addWidget(m_traceList);
    auto* remove = new QPushButton(tr("Remove trace"));
    m_normalise = new QCheckBox(tr("Scale each trace to its own height"));
    ions->addWidget(remove);
    ions->addWidget(m_normalise);
    column->addWidget(ionsBox);

    m_subtract = new QCheckBox(tr("Subtract the background range"));
    m_subtract->setObjectName("subtractBackground");
    m_subtract->setEnabled(false);
    column->addWidget(m_subtract);
    column->addStretch(1);

    const bool usable = m_run.HasSpectra() && m_run.ScanCount() > 0;
    ionsBox->setEnabled(usable);
    const auto add = [this] {
        QString error;
        if (!AddExtractedIons(m_ionEdit->text(), m_tolerance->value(), &error))
            m_ionEdit->setToolTip(error);
        else
            m_ionEdit->clear();
    };
    connect(m_addIons, &QPushButton::clicked, this, add);
    connect(m_ionEdit, &QLineEdit::returnPressed, this, add);
    connect(remove, &QPushButton::clicked, this, [this] { RemoveTrace(m_traceList->currentRow() + 1); });
    connect(m_normalise, &QCheckBox::toggled, m_chromatogram, &ChromatogramView::SetNormalised);
    connect(m_subtract, &QCheckBox::toggled, this, &RunReviewPage::SetSubtractBackground);
    return panel;
}

void RunReviewPage::FillFacts(QFormLayout* form) {
    const VexaRunFacts facts = VexaRunFacts::Of(m_run);
    const auto text = [](const std::string& utf8) { return QString::fromStdString(utf8); };
    QString range;
    if (facts.massHigh > 0)
        range = tr("m/z %1 to %2").arg(MassText(facts.massLow), MassText(facts.massHigh));
    QString runTime;
    if (m_run.HasSpectra())
        runTime = tr("%1 min").arg(Minutes(facts.runSeconds));
    if (facts.stopped)
        runTime += runTime.isEmpty() ? tr("stopped early") : tr(" (stopped early)");
    // A version-1 file says its scan mode only in its parameters.
    const bool modeKnown = m_run.HasSpectra() || !m_run.Parameter(L"SCANMODE").empty();
    m_facts = {
        {tr("File"), QString::fromStdWString(m_sourceName)},
        {tr("Sample"), text(facts.sample)},
        {tr("Started"), m_run.StartTime() ? text(facts.startTime) : QString()},
        {tr("Method"), text(facts.method)},
        {tr("Instrument"), text(facts.instrument)},
        {tr("Scan mode"), modeKnown ? text(facts.scanMode) : QString()},
        {tr("Mass range"), range},
        {tr("Scans"), QString::number(facts.scans)},
        {tr("Run time"), runTime},
        {tr("Format"), tr("version %1").arg(facts.version)},
    };
    for (const auto& [label, value] : m_facts) {
        auto* text = new QLabel(value.isEmpty() ? tr("-") : value);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        text->setWordWrap(true);
        form->addRow(label + ':', text);
    }
}

void RunReviewPage::AddTicTrace() {
    std::vector<double> tic(m_run.Tic().begin(), m_run.Tic().end());
    m_chromatogram->AddTrace({tr("TIC"), Qt::black, m_times, std::move(tic)});
}

bool RunReviewPage::AddExtractedIons(const QString& text, double tolerance, QString* error) {
    if (!m_run.HasSpectra()) {
        if (error)
            *error = tr("The file holds no spectra.");
        return false;
    }
    std::vector<double> masses;
    QStringList names;
    for (const QString& part : text.split(QRegularExpression("[,;\\s]+"), Qt::SkipEmptyParts)) {
        bool ok = false;
        const double mass = part.toDouble(&ok);
        if (!ok || !(mass >= kLowestMass && mass <= kHighestMass)) {
            if (error)
                *error =
                    tr("\"%1\" is not an m/z from %2 to %3.").arg(part).arg(kLowestMass).arg(kHighestMass);
            return false;
        }
        masses.push_back(mass);
        names << MassText(mass);
    }
    if (masses.empty() || !(tolerance > 0)) {
        if (error)
            *error = tr("Give one or more m/z, such as 91 or 78, 91.");
        return false;
    }
    const std::vector<float> trace = m_run.ExtractedIon(masses, tolerance);
    const QString name = tr("m/z %1 ±%2").arg(names.join(QStringLiteral(" + ")), QString::number(tolerance));
    const QColor colour = kTraceColours[(m_chromatogram->TraceCount() - 1) % std::size(kTraceColours)];
    m_chromatogram->AddTrace({name, colour, m_times, std::vector<double>(trace.begin(), trace.end())});
    m_ionTraces.push_back({masses, tolerance});
    m_traceList->addItem(name);
    m_traceList->setCurrentRow(m_traceList->count() - 1);
    return true;
}

void RunReviewPage::RemoveTrace(int index) {
    // Trace 0 is the TIC and stays.
    if (index < 1 || index >= m_chromatogram->TraceCount())
        return;
    m_chromatogram->RemoveTrace(index);
    m_ionTraces.erase(m_ionTraces.begin() + (index - 1));
    delete m_traceList->takeItem(index - 1);
}

void RunReviewPage::ShowScanAt(double seconds) {
    const size_t scan = m_run.ScanNearest(seconds);
    if (scan >= m_run.ScanCount())
        return;
    m_scans = {scan, scan};
    if (m_chromatogram->Marker() != m_run.TimeSeconds(scan))
        m_chromatogram->SetMarker(m_run.TimeSeconds(scan));
    UpdateSpectrum();
}

void RunReviewPage::ShowRange(double fromSeconds, double toSeconds) {
    const auto [first, last] = m_run.ScansBetween(fromSeconds, toSeconds);
    if (first >= m_run.ScanCount())
        return;
    m_scans = {first, last};
    m_chromatogram->SetSelection(
        PlotRange{std::min(fromSeconds, toSeconds), std::max(fromSeconds, toSeconds)});
    UpdateSpectrum();
}

void RunReviewPage::SetBackground(std::optional<PlotRange> range) {
    m_backgroundScans.reset();
    if (range) {
        const auto [first, last] = m_run.ScansBetween(range->lo, range->hi);
        if (first < m_run.ScanCount())
            m_backgroundScans = {first, last};
    }
    m_chromatogram->SetBackground(m_backgroundScans ? range : std::nullopt);
    m_subtract->setEnabled(m_backgroundScans.has_value());
    // Marking a background means it is meant to be subtracted.
    if (m_backgroundScans && !m_subtract->isChecked())
        m_subtract->setChecked(true); // updates through SetSubtractBackground
    else
        UpdateSpectrum();
}

void RunReviewPage::SetSubtractBackground(bool subtract) {
    if (m_subtract->isChecked() != subtract)
        m_subtract->setChecked(subtract);
    UpdateSpectrum();
}

bool RunReviewPage::SubtractsBackground() const {
    return m_backgroundScans && m_subtract->isChecked();
}

std::optional<std::pair<size_t, size_t>> RunReviewPage::BackgroundScans() const {
    return m_backgroundScans;
}

QString RunReviewPage::SpectrumTitle() const {
    if (!m_scans)
        return {};
    const auto [first, last] = *m_scans;
    QString title = first == last
                        ? tr("Scan %1 at %2 min").arg(first + 1).arg(Minutes(m_run.TimeSeconds(first)))
                        : tr("Average of scans %1 to %2 (%3 to %4 min)")
                              .arg(first + 1)
                              .arg(last + 1)
                              .arg(Minutes(m_run.TimeSeconds(first)), Minutes(m_run.TimeSeconds(last)));
    if (SubtractsBackground()) {
        const auto [bgFirst, bgLast] = *m_backgroundScans;
        title += tr(", minus background scans %1 to %2").arg(bgFirst + 1).arg(bgLast + 1);
    }
    return title;
}

void RunReviewPage::UpdateSpectrum() {
    if (!m_scans)
        return;
    const auto [first, last] = *m_scans;
    m_shown = first == last ? m_run.Spectrum(first) : m_run.Average(first, last);
    if (SubtractsBackground())
        m_shown = m_shown.Minus(m_run.Average(m_backgroundScans->first, m_backgroundScans->second));
    m_spectrum->SetSpectrum(std::vector<double>(m_shown.mz.begin(), m_shown.mz.end()),
                            std::vector<double>(m_shown.intensity.begin(), m_shown.intensity.end()),
                            SpectrumTitle());
    emit SpectrumChanged();
}

VexaExport::SpectrumOrigin RunReviewPage::ShownOrigin() const {
    VexaExport::SpectrumOrigin origin;
    origin.file = QString::fromStdWString(m_sourceName).toStdString();
    const std::string sample = VexaRunFacts::Of(m_run).sample;
    origin.name = (sample.empty() ? std::string() : sample + ", ") + SpectrumTitle().toStdString();
    if (m_scans) {
        origin.fromSeconds = m_run.TimeSeconds(m_scans->first);
        origin.toSeconds = m_run.TimeSeconds(m_scans->second);
    }
    if (SubtractsBackground()) {
        origin.hasBackground = true;
        origin.backgroundFrom = m_run.TimeSeconds(m_backgroundScans->first);
        origin.backgroundTo = m_run.TimeSeconds(m_backgroundScans->second);
    }
    return origin;
}
