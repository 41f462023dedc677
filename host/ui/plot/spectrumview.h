// SPDX-License-Identifier: Apache-2.0
#pragma once
// A mass spectrum: one bar per m/z as relative abundance (100 = the base peak of the whole spectrum),
// the largest visible peaks labelled with their m/z where the labels do not collide (peaks under 2 %
// of the visible maximum are left unlabelled), and a title line
// that says what the spectrum is. Dragging with the left button zooms into an m/z range.
#include "plotcanvas.h"

#include <QString>

#include <vector>

struct DecimatedTrace;

class SpectrumView : public PlotCanvas {
    Q_OBJECT
public:
    explicit SpectrumView(QWidget* parent = nullptr);
    ~SpectrumView() override;

    // `mz` ascending; intensities are scaled to the largest of them.
    void SetSpectrum(std::vector<double> mz, std::vector<double> intensity, const QString& title);
    void ClearSpectrum(const QString& emptyText);
    // The m/z range shown when not zoomed (the run's scan range); empty: the spectrum's own.
    void SetMassRange(PlotRange range);
    // How many peaks get a label at most.
    void SetLabelCount(int count);

    const QString& Title() const { return m_title; }
    const std::vector<double>& Masses() const { return m_mz; }
    const std::vector<double>& RelativeAbundances() const { return m_relative; }
    // The base peak's m/z and its intensity before scaling (0 when the spectrum is empty or all zero).
    double BasePeakMass() const { return m_baseMass; }
    double BasePeakIntensity() const { return m_baseIntensity; }
    // The m/z the last drawing labelled, largest peak first.
    const std::vector<double>& LabelledMasses() const { return m_labelled; }

protected:
    PlotRange DataX() const override;
    PlotRange Prepare(PlotRange x, int columns) const override;
    void DrawData(QPainter& painter, const Frame& frame) const override;
    QString XTitle() const override;
    QString YTitle() const override;
    QString EmptyText() const override { return m_emptyText; }
    double MinimumWidth() const override { return 2.0; }

private:
    void DrawLabels(QPainter& painter, const Frame& frame) const;

    std::vector<double> m_mz;
    std::vector<double> m_relative;
    double m_baseMass = 0.0;
    double m_baseIntensity = 0.0;
    bool m_nominal = true; // every m/z a whole number: labels without decimals
    PlotRange m_massRange;
    int m_labelCount = 8;
    QString m_title;
    QString m_emptyText;
    mutable std::vector<DecimatedTrace> m_columns; // one entry when prepared
    mutable std::vector<double> m_labelled;
};
