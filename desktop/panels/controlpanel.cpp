#include "controlpanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "colormap.h"
#include "markers.h"
#include "sweepstore.h"

namespace wsa::desktop
{

ControlPanel::ControlPanel(QWidget* parent) : QWidget(parent)
{
    auto* box = new QVBoxLayout(this);
    box->addWidget(viewGroup());
    box->addWidget(traceGroup());
    box->addWidget(levelGroup());
    box->addWidget(markerGroup());
    box->addStretch(1);
    setSettings(DisplaySettings());
}

QWidget* ControlPanel::viewGroup()
{
    auto* group = new QGroupBox(tr("Display"));
    auto* form = new QFormLayout(group);
    m_viewMode = new QComboBox;
    m_viewMode->addItem(tr("All views"), int(ViewMode::All));
    m_viewMode->addItem(tr("Spectrum"), int(ViewMode::Spectrum));
    m_viewMode->addItem(tr("Density"), int(ViewMode::Density));
    m_viewMode->addItem(tr("Waterfall"), int(ViewMode::Waterfall));
    connect(m_viewMode, &QComboBox::currentIndexChanged, this,
            [this] { emit viewModeChanged(ViewMode(m_viewMode->currentData().toInt())); });
    form->addRow(tr("Views"), m_viewMode);
    m_pause = new QPushButton(tr("Pause"));
    m_pause->setCheckable(true);
    m_pause->setToolTip(tr("Freeze the picture; acquisition and recording go on"));
    connect(m_pause, &QPushButton::toggled, this, &ControlPanel::pauseToggled);
    auto* resetDensity = new QPushButton(tr("Clear density"));
    connect(resetDensity, &QPushButton::clicked, this, &ControlPanel::resetDensity);
    auto* row = new QHBoxLayout;
    row->addWidget(m_pause);
    row->addWidget(resetDensity);
    form->addRow(row);
    return group;
}

QWidget* ControlPanel::traceGroup()
{
    auto* group = new QGroupBox(tr("Traces"));
    auto* form = new QFormLayout(group);
    for (int t = 0; t < kTraceCount; ++t) {
        m_traces[t] = new QCheckBox(traceName(Trace(t)));
        connect(m_traces[t], &QCheckBox::toggled, this, &ControlPanel::emitSettings);
        form->addRow(m_traces[t]);
    }
    m_averaging = new QSpinBox;
    m_averaging->setRange(1, SweepStore::kMaxAveraging);
    m_averaging->setValue(10);
    m_averaging->setSuffix(tr(" sweeps"));
    connect(m_averaging, &QSpinBox::valueChanged, this, &ControlPanel::averagingChanged);
    form->addRow(tr("Averaging"), m_averaging);
    auto* reset = new QPushButton(tr("Reset holds"));
    reset->setToolTip(tr("Start average, maximum and minimum again"));
    connect(reset, &QPushButton::clicked, this, &ControlPanel::resetHolds);
    form->addRow(reset);
    return group;
}

QWidget* ControlPanel::levelGroup()
{
    auto* group = new QGroupBox(tr("Scale"));
    auto* form = new QFormLayout(group);
    auto spin = [this](double value) {
        auto* s = new QDoubleSpinBox;
        s->setRange(SweepStore::kDensityBottomDbm, SweepStore::kDensityTopDbm);
        s->setDecimals(0);
        s->setSingleStep(5);
        s->setSuffix(tr(" dBm"));
        s->setValue(value);
        connect(s, &QDoubleSpinBox::valueChanged, this, &ControlPanel::emitSettings);
        return s;
    };
    m_top = spin(DisplaySettings().topDbm);
    m_bottom = spin(DisplaySettings().bottomDbm);
    form->addRow(tr("Top"), m_top);
    form->addRow(tr("Bottom"), m_bottom);
    m_channels = new QCheckBox(tr("Wi-Fi channels"));
    connect(m_channels, &QCheckBox::toggled, this, &ControlPanel::emitSettings);
    m_width = new QComboBox;
    connect(m_width, &QComboBox::currentIndexChanged, this, &ControlPanel::emitSettings);
    form->addRow(m_channels);
    form->addRow(tr("Channel width"), m_width);
    return group;
}

QWidget* ControlPanel::markerGroup()
{
    auto* group = new QGroupBox(tr("Markers"));
    auto* form = new QFormLayout(group);
    m_marker = new QComboBox;
    for (int i = 0; i < Markers::kCount; ++i)
        m_marker->addItem(tr("Marker %1").arg(i + 1));
    connect(m_marker, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!m_updating)
            emit activeMarkerChanged(i);
    });
    m_markerTrace = new QComboBox;
    for (int t = 0; t < kTraceCount; ++t)
        m_markerTrace->addItem(traceName(Trace(t)));
    connect(m_markerTrace, &QComboBox::currentIndexChanged, this, [this](int t) {
        if (!m_updating)
            emit markerTraceChanged(Trace(t));
    });
    form->addRow(tr("Active"), m_marker);
    form->addRow(tr("On trace"), m_markerTrace);
    m_follow = new QCheckBox(tr("Follow the peak"));
    m_follow->setToolTip(
        tr("Move the active marker to its trace's highest level with every sweep"));
    connect(m_follow, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_updating)
            emit followPeakToggled(on);
    });
    form->addRow(m_follow);
    auto button = [this](const QString& text, const QString& tip, void (ControlPanel::*sig)()) {
        auto* b = new QPushButton(text);
        b->setToolTip(tip);
        connect(b, &QPushButton::clicked, this, sig);
        return b;
    };
    auto* row = new QHBoxLayout;
    row->addWidget(button(tr("< Peak"), tr("Next peak left"), &ControlPanel::nextPeakLeft));
    row->addWidget(button(tr("Peak"), tr("Highest level"), &ControlPanel::peakSearch));
    row->addWidget(button(tr("Peak >"), tr("Next peak right"), &ControlPanel::nextPeakRight));
    form->addRow(row);
    form->addRow(
        button(tr("Marker off"), tr("Switch the active marker off"), &ControlPanel::markerOff));
    return group;
}

void ControlPanel::setBand(const Band& band)
{
    const int chosen = m_width->currentData().isValid() ? m_width->currentData().toInt() : 20;
    m_updating = true;
    m_width->clear();
    for (int w : band.widthsMHz)
        m_width->addItem(tr("%1 MHz").arg(w), w);
    const int keep = m_width->findData(chosen);
    m_width->setCurrentIndex(keep >= 0 ? keep : 0);
    m_updating = false;
    emitSettings();
}

void ControlPanel::setSettings(const DisplaySettings& s)
{
    m_updating = true;
    for (int t = 0; t < kTraceCount; ++t)
        m_traces[t]->setChecked(s.traceShown[t]);
    m_top->setValue(s.topDbm);
    m_bottom->setValue(s.bottomDbm);
    m_channels->setChecked(s.showChannels);
    const int w = m_width->findData(s.channelWidthMHz);
    if (w >= 0)
        m_width->setCurrentIndex(w);
    m_updating = false;
}

DisplaySettings ControlPanel::settings() const
{
    DisplaySettings s;
    for (int t = 0; t < kTraceCount; ++t)
        s.traceShown[t] = m_traces[t]->isChecked();
    // A range the wrong way round or empty is taken as its nearest sensible one.
    s.bottomDbm = std::min(m_bottom->value(), SweepStore::kDensityTopDbm - 1.0);
    s.topDbm = std::max(m_top->value(), s.bottomDbm + 1);
    s.showChannels = m_channels->isChecked();
    s.channelWidthMHz = m_width->currentData().isValid() ? m_width->currentData().toInt() : 20;
    return s;
}

void ControlPanel::emitSettings()
{
    if (!m_updating)
        emit settingsChanged(settings());
}

void ControlPanel::setPaused(bool paused)
{
    m_pause->setChecked(paused);
}

void ControlPanel::setAveraging(int sweeps)
{
    m_averaging->setValue(sweeps);
}

int ControlPanel::averaging() const
{
    return m_averaging->value();
}

void ControlPanel::setViewMode(ViewMode mode)
{
    m_viewMode->setCurrentIndex(std::max(0, m_viewMode->findData(int(mode))));
}

ViewMode ControlPanel::viewMode() const
{
    return ViewMode(m_viewMode->currentData().toInt());
}

void ControlPanel::setActiveMarker(int index, Trace trace, bool followsPeak)
{
    m_updating = true;
    m_marker->setCurrentIndex(index);
    m_markerTrace->setCurrentIndex(int(trace));
    m_follow->setChecked(followsPeak);
    m_updating = false;
}

} // namespace wsa::desktop
