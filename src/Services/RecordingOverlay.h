#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace lorvane {

class Meter;
class OverlayPanel;
class Screens;

/// The floating card that tells what a dictation is doing while another application has the
/// keyboard focus, which it never takes. It shows what it is told to. Main thread only.
class RecordingOverlay : public QObject {
    Q_OBJECT
public:
    enum class Mode {
        preparing,    ///< the microphone is being readied
        recording,    ///< the microphone is live
        transcribing, ///< the recording has ended, the final text is being made
        preview,      ///< a demonstration; the microphone is off
    };
    Q_ENUM(Mode)

    /// `screens` and `panel` outlive the overlay.
    RecordingOverlay(Screens &screens, OverlayPanel &panel, QObject *parent = nullptr);

    /// Shows the card at the bottom of the screen with the pointer; a card that is up already
    /// stays where it is, keeps its level history and only changes its mode.
    void show(Mode mode);

    /// Feeds the card. Each call moves the level history on by one step: by `level`, limited to
    /// the range 0 to 1, while the mode has one to show, else by 0. `duration` is in seconds.
    void update(double level, double duration, const QString &detail);

    /// Takes the card off the screen; what it holds stays.
    void hide();

    bool isVisible() const;

    /// Self-check: true if the card, as it is on the screen, can't take the keyboard focus.
    bool preservesKeyboardFocus() const;

    /// What the card draws. Belongs to the overlay and lives as long.
    Meter *meter() const { return meter_; }

private:
    void place();

    Screens &screens_;
    OverlayPanel &panel_;
    Meter *meter_;
    bool hasBeenShown_ = false;
};

/// The model of the card; only its RecordingOverlay writes it.
class Meter : public QObject {
    Q_OBJECT
    Q_PROPERTY(lorvane::RecordingOverlay::Mode mode READ mode NOTIFY modeChanged)
    Q_PROPERTY(QList<double> samples READ samples NOTIFY samplesChanged)
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(QString detail READ detail NOTIFY detailChanged)

    Q_PROPERTY(QString title READ title NOTIFY modeChanged)
    Q_PROPERTY(QString timer READ timer NOTIFY durationChanged)
    Q_PROPERTY(bool showsWaveform READ showsWaveform NOTIFY modeChanged)
    Q_PROPERTY(QString accessibleLabel READ accessibleLabel NOTIFY modeChanged)
    Q_PROPERTY(QString accessibleValue READ accessibleValue NOTIFY samplesChanged)

public:
    static constexpr int sampleCount = 34;

    explicit Meter(QObject *parent = nullptr);

    RecordingOverlay::Mode mode() const { return mode_; }
    /// The level history, oldest first: always `sampleCount` values from 0 to 1.
    const QList<double> &samples() const { return samples_; }
    /// Seconds.
    double duration() const { return duration_; }
    /// The line shown where there is no waveform.
    const QString &detail() const { return detail_; }

    QString title() const;
    /// Minutes and seconds; the minutes go on past an hour.
    QString timer() const;
    /// Whether the microphone and the waveform are drawn, and not the spinner and the detail line.
    bool showsWaveform() const;
    QString accessibleLabel() const;
    QString accessibleValue() const;

Q_SIGNALS:
    void modeChanged();
    void samplesChanged();
    void durationChanged();
    void detailChanged();

private:
    friend class RecordingOverlay;

    void setMode(RecordingOverlay::Mode mode);
    void setDuration(double duration);
    void setDetail(const QString &detail);
    void append(double level);
    void clearSamples();

    RecordingOverlay::Mode mode_ = RecordingOverlay::Mode::preparing;
    QList<double> samples_;
    double duration_ = 0;
    QString detail_;
};

} // namespace lorvane
