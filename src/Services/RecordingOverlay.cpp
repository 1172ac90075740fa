#include "Services/RecordingOverlay.h"

#include "Platform/OverlayPanel.h"
#include "Platform/Screens.h"

#include <QPoint>

#include <algorithm>

namespace lorvane {

namespace {

constexpr int distanceFromEdge = 42;

} // namespace

RecordingOverlay::RecordingOverlay(Screens &screens, OverlayPanel &panel, QObject *parent)
    : QObject(parent), screens_(screens), panel_(panel), meter_(new Meter(this)) {}

void RecordingOverlay::show(Mode mode) {
    meter_->setMode(mode);
    if (panel_.isVisible())
        return;
    place();
    meter_->clearSamples();
    panel_.orderFront();
    hasBeenShown_ = true;
}

void RecordingOverlay::place() {
    const QPoint pointer = screens_.pointer();
    const QList<Screen> all = screens_.screens();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Screen &screen) {
        return screen.frame.contains(pointer);
    });
    const std::optional<Screen> screen = found != all.end() ? *found : screens_.mainScreen();
    if (!screen)
        return;

    const QRect area = screen->visibleFrame;
    const QSize size = panel_.size();
    panel_.setPosition({area.x() + (area.width() - size.width()) / 2,
                        area.y() + area.height() - distanceFromEdge - size.height()});
}

void RecordingOverlay::update(double level, double duration, const QString &detail) {
    meter_->setDuration(duration);
    meter_->setDetail(detail);
    meter_->append(meter_->showsWaveform() ? std::clamp(level, 0.0, 1.0) : 0);
}

void RecordingOverlay::hide() {
    if (hasBeenShown_)
        panel_.orderOut();
}

bool RecordingOverlay::isVisible() const { return panel_.isVisible(); }

bool RecordingOverlay::preservesKeyboardFocus() const {
    return !hasBeenShown_ || panel_.refusesKeyboardFocus();
}

Meter::Meter(QObject *parent)
    : QObject(parent), samples_(sampleCount, 0), detail_(u"Preparing microphone…"_qs) {}

void Meter::setMode(RecordingOverlay::Mode mode) {
    mode_ = mode;
    Q_EMIT modeChanged();
}

void Meter::setDuration(double duration) {
    duration_ = duration;
    Q_EMIT durationChanged();
}

void Meter::setDetail(const QString &detail) {
    detail_ = detail;
    Q_EMIT detailChanged();
}

void Meter::append(double level) {
    std::rotate(samples_.begin(), samples_.begin() + 1, samples_.end());
    samples_.last() = level;
    Q_EMIT samplesChanged();
}

void Meter::clearSamples() {
    samples_.fill(0);
    Q_EMIT samplesChanged();
}

QString Meter::title() const {
    switch (mode_) {
    case RecordingOverlay::Mode::preparing: return u"Getting ready"_qs;
    case RecordingOverlay::Mode::recording: return u"Recording"_qs;
    case RecordingOverlay::Mode::transcribing: return u"Transcribing"_qs;
    case RecordingOverlay::Mode::preview: return u"Preview · microphone off"_qs;
    }
    return {};
}

QString Meter::timer() const {
    const auto seconds = static_cast<qint64>(duration_);
    return u"%1:%2"_qs.arg(seconds / 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

bool Meter::showsWaveform() const {
    return mode_ == RecordingOverlay::Mode::recording || mode_ == RecordingOverlay::Mode::preview;
}

QString Meter::accessibleLabel() const {
    return mode_ == RecordingOverlay::Mode::preview ? u"Demo waveform; microphone is off"_qs
                                                    : u"Live microphone waveform"_qs;
}

QString Meter::accessibleValue() const {
    return u"%1 percent"_qs.arg(static_cast<int>(samples_.last() * 100));
}

} // namespace lorvane
