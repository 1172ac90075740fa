#pragma once

#include "AppStore/AppStore.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

namespace lorvane {

/// What the Home page shows, out of the store's state. It notifies only of what has changed, since
/// the store tells of every buffer of the microphone.
class HomeModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(lorvane::AppStore *store READ store WRITE setStore NOTIFY storeChanged)

    Q_PROPERTY(QString title READ title NOTIFY stateChanged)
    Q_PROPERTY(QString hint READ hint NOTIFY stateChanged)
    Q_PROPERTY(QString badge READ badge NOTIFY stateChanged)
    Q_PROPERTY(QString recordLabel READ recordLabel NOTIFY stateChanged)
    Q_PROPERTY(QString recordSymbol READ recordSymbol NOTIFY stateChanged)
    Q_PROPERTY(bool canToggleRecording READ canToggleRecording NOTIFY stateChanged)
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY stateChanged)
    Q_PROPERTY(bool isPreparing READ isPreparing NOTIFY stateChanged)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY stateChanged)
    Q_PROPERTY(QString transcript READ transcript NOTIFY stateChanged)
    Q_PROPERTY(bool isTranscriptFinal READ isTranscriptFinal NOTIFY stateChanged)

    Q_PROPERTY(QList<double> barHeights READ barHeights NOTIFY levelChanged)
    Q_PROPERTY(QList<double> barOpacities READ barOpacities CONSTANT)

    Q_PROPERTY(QString wordsCaptured READ wordsCaptured NOTIFY historyChanged)
    Q_PROPERTY(QString thoughtsSaved READ thoughtsSaved NOTIFY historyChanged)
    Q_PROPERTY(QString timeDictating READ timeDictating NOTIFY historyChanged)
    Q_PROPERTY(bool hasLatest READ hasLatest NOTIFY historyChanged)
    Q_PROPERTY(QString latestDate READ latestDate NOTIFY historyChanged)
    Q_PROPERTY(QString latestWords READ latestWords NOTIFY historyChanged)
    Q_PROPERTY(QString latestText READ latestText NOTIFY historyChanged)

public:
    static constexpr int barCount = 24;

    using QObject::QObject;

    AppStore *store() const { return store_; }
    void setStore(AppStore *store);

    // The recording card.
    QString title() const;
    QString hint() const;
    QString badge() const;
    QString recordLabel() const;
    QString recordSymbol() const;
    /// A running recording can always be finished.
    bool canToggleRecording() const { return state_.isRecording || !state_.isBusy; }
    bool isRecording() const { return state_.isRecording; }
    bool isPreparing() const { return !state_.isRecording && state_.isBusy; }
    bool isBusy() const { return state_.isBusy; }
    const QString &transcript() const { return state_.transcript; }
    bool isTranscriptFinal() const { return state_.isTranscriptFinal; }

    /// The heights of the level meter's bars.
    const QList<double> &barHeights() const { return barHeights_; }
    static double barHeight(int bar, double level);
    /// What a bar takes of the level, from 0.25 to 1: a ragged outline that stays.
    static double barShare(int bar);
    /// The more a bar takes, the stronger it is drawn.
    static QList<double> barOpacities();

    // The statistics.
    QString wordsCaptured() const;
    QString thoughtsSaved() const;
    QString timeDictating() const;
    /// Whole minutes, or whole seconds below a minute; there is no unit of hours.
    static QString durationLabel(double seconds);

    // The newest record; empty texts when there is none.
    bool hasLatest() const;
    QString latestDate() const;
    QString latestWords() const;
    QString latestText() const;

Q_SIGNALS:
    void storeChanged();
    void stateChanged();
    void levelChanged();
    void historyChanged();

private:
    struct State {
        bool isRecording = false;
        bool isHoldingToTalk = false;
        bool isBusy = false;
        bool isTranscriptFinal = false;
        QString transcript;
        bool operator==(const State &) const = default;
    };

    static QList<double> heightsAt(double level);
    void refresh();

    QPointer<AppStore> store_;
    State state_;
    double level_ = 0;
    QList<double> barHeights_ = heightsAt(0);
};

} // namespace lorvane
