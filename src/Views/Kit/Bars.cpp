#include "Views/Kit/Bars.h"

#include <QPainter>

#include <algorithm>

namespace lorvane {

Bars::Bars(QQuickItem *parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    animation_.setStartValue(0.0);
    animation_.setEndValue(1.0);
    connect(&animation_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &progress) { move(progress.toDouble()); });
}

void Bars::setHeights(const QList<double> &heights) {
    if (heights == heights_)
        return;
    heights_ = heights;
    // A row that nobody saw doesn't move.
    before_ = isVisible() && drawn_.size() == heights_.size() ? drawn_ : heights_;
    fitWidth();
    move(0);
    animation_.stop();
    if (before_ != heights_)
        animation_.start();
    Q_EMIT changed();
}

void Bars::setColor(const QColor &color) {
    color_ = color;
    update();
    Q_EMIT changed();
}

void Bars::setOpacities(const QList<double> &opacities) {
    opacities_ = opacities;
    update();
    Q_EMIT changed();
}

void Bars::setSpacing(double spacing) {
    spacing_ = spacing;
    fitWidth();
    update();
    Q_EMIT changed();
}

void Bars::setDuration(int duration) {
    animation_.setDuration(duration);
    Q_EMIT changed();
}

void Bars::setEasing(const QEasingCurve &easing) {
    animation_.setEasingCurve(easing);
    Q_EMIT changed();
}

void Bars::fitWidth() {
    const auto count = static_cast<double>(heights_.size());
    setImplicitWidth(count > 0 ? count * (barWidth + spacing_) - spacing_ : 0);
}

void Bars::move(double progress) {
    drawn_.resize(heights_.size());
    for (qsizetype i = 0; i < drawn_.size(); ++i)
        drawn_[i] = before_[i] + (heights_[i] - before_[i]) * progress;
    update();
}

void Bars::paint(QPainter *painter) {
    painter->setPen(Qt::NoPen);
    for (qsizetype i = 0; i < drawn_.size(); ++i) {
        QColor color = color_;
        if (i < opacities_.size())
            color.setAlphaF(static_cast<float>(color_.alphaF() * opacities_[i]));
        painter->setBrush(color);
        const QRectF bar(static_cast<double>(i) * (barWidth + spacing_), (height() - drawn_[i]) / 2,
                         barWidth, drawn_[i]);
        const double radius = std::min(barWidth, drawn_[i]) / 2;
        painter->drawRoundedRect(bar, radius, radius);
    }
}

} // namespace lorvane
