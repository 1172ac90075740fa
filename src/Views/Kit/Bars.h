#pragma once

#include <QColor>
#include <QEasingCurve>
#include <QList>
#include <QQuickPaintedItem>
#include <QVariantAnimation>

namespace lorvane {

/// A row of upright bars with round ends, each centred at the item's middle. They move to new
/// heights in `duration` milliseconds. One item draws them all: as many items of their own would
/// cost a software renderer several times as much in each frame of a live picture.
class Bars : public QQuickPaintedItem {
    Q_OBJECT
    /// Logical pixels, from the left.
    Q_PROPERTY(QList<double> heights READ heights WRITE setHeights NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)
    /// Of each bar, from 0 to 1; without any all are opaque.
    Q_PROPERTY(QList<double> opacities READ opacities WRITE setOpacities NOTIFY changed)
    Q_PROPERTY(double spacing READ spacing WRITE setSpacing NOTIFY changed)
    Q_PROPERTY(int duration READ duration WRITE setDuration NOTIFY changed)
    Q_PROPERTY(QEasingCurve easing READ easing WRITE setEasing NOTIFY changed)

public:
    static constexpr double barWidth = 4;

    explicit Bars(QQuickItem *parent = nullptr);

    const QList<double> &heights() const { return heights_; }
    void setHeights(const QList<double> &heights);
    /// As they are drawn now, which may be on the way to `heights`.
    const QList<double> &drawnHeights() const { return drawn_; }
    QColor color() const { return color_; }
    void setColor(const QColor &color);
    const QList<double> &opacities() const { return opacities_; }
    void setOpacities(const QList<double> &opacities);
    double spacing() const { return spacing_; }
    void setSpacing(double spacing);
    int duration() const { return animation_.duration(); }
    void setDuration(int duration);
    QEasingCurve easing() const { return animation_.easingCurve(); }
    void setEasing(const QEasingCurve &easing);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void changed();

private:
    void fitWidth();
    void move(double progress);

    QList<double> heights_;
    QList<double> before_; ///< where the present movement began
    QList<double> drawn_;
    QColor color_;
    QList<double> opacities_;
    double spacing_ = 0;
    QVariantAnimation animation_{this};
};

} // namespace lorvane
