#include "Views/Dictation/HomeModel.h"

#include "Views/Kit/Formatting.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lorvane {

void HomeModel::setStore(AppStore *store) {
    if (store_)
        store_->disconnect(this);
    store_ = store;
    if (store_) {
        connect(store_, &AppStore::dictationChanged, this, &HomeModel::refresh);
        connect(store_, &AppStore::isBusyChanged, this, &HomeModel::refresh);
        connect(store_, &AppStore::historyChanged, this, &HomeModel::historyChanged);
    }
    refresh();
    Q_EMIT storeChanged();
    Q_EMIT historyChanged();
}

void HomeModel::refresh() {
    State state;
    double level = 0;
    if (store_) {
        state = {store_->isRecording(), store_->isHoldingToTalk(), store_->isBusy(),
                 store_->hasCompletedTranscript(), store_->displayedTranscript()};
        level = std::clamp(store_->audioLevel(), 0.0, 1.0);
    }
    if (state != state_) {
        state_ = std::move(state);
        Q_EMIT stateChanged();
    }
    if (level != level_) {
        level_ = level;
        barHeights_ = heightsAt(level);
        Q_EMIT levelChanged();
    }
}

QString HomeModel::title() const {
    return state_.isRecording ? u"Go on. We’re listening."_qs : u"Let your words flow."_qs;
}

QString HomeModel::hint() const {
    if (!state_.isRecording)
        return u"Hold a shortcut. Speak. Release to paste."_qs;
    return state_.isHoldingToTalk
               ? u"Keep holding the shortcut. Release to transcribe and paste."_qs
               : u"Speak clearly, then finish when you’re ready."_qs;
}

QString HomeModel::badge() const { return state_.isRecording ? u"● LIVE"_qs : u"DICTATION"_qs; }

QString HomeModel::recordLabel() const {
    return state_.isRecording ? u"Finish dictation"_qs : u"Start dictation"_qs;
}

QString HomeModel::recordSymbol() const {
    return state_.isRecording ? u"stop.fill"_qs : u"mic.fill"_qs;
}

double HomeModel::barShare(int bar) { return 0.25 + std::abs(std::sin(1.7 * bar)) * 0.75; }

double HomeModel::barHeight(int bar, double level) {
    return 5 + std::clamp(level, 0.0, 1.0) * barShare(bar) * 30;
}

QList<double> HomeModel::barOpacities() {
    QList<double> opacities;
    for (int bar = 0; bar < barCount; ++bar)
        opacities.append(0.45 + barShare(bar) * 0.55);
    return opacities;
}

QList<double> HomeModel::heightsAt(double level) {
    QList<double> heights;
    for (int bar = 0; bar < barCount; ++bar)
        heights.append(barHeight(bar, level));
    return heights;
}

QString HomeModel::wordsCaptured() const {
    return groupedNumber(store_ ? store_->totalWords() : 0);
}

QString HomeModel::thoughtsSaved() const {
    return QString::number(store_ ? store_->historyCount() : 0);
}

QString HomeModel::timeDictating() const {
    return durationLabel(store_ ? store_->totalDuration() : 0);
}

QString HomeModel::durationLabel(double seconds) {
    const auto minutes = static_cast<qint64>(seconds / 60);
    return minutes > 0 ? u"%1m"_qs.arg(minutes) : u"%1s"_qs.arg(static_cast<qint64>(seconds));
}

bool HomeModel::hasLatest() const { return store_ && !store_->history().isEmpty(); }

QString HomeModel::latestDate() const {
    return hasLatest() ? dateLabel(store_->history().first().createdAt) : QString();
}

QString HomeModel::latestWords() const {
    return hasLatest() ? wordsLabel(store_->history().first()) : QString();
}

QString HomeModel::latestText() const {
    return hasLatest() ? store_->history().first().text : QString();
}

} // namespace lorvane
