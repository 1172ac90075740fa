#pragma once

#include "PageFixture.h"
#include "Views/Kit/Formatting.h"
#include "Views/Kit/SystemFont.h"

#include <QFont>
#include <QMetaProperty>
#include <QQmlComponent>
#include <QQuickTextDocument>
#include <QTextBlock>
#include <QTextDocument>

#include <cmath>

namespace lorvane {

/// How things look, as far as it can be told in words. A thing is named by the text that it shows,
/// by its icon, or by its type; in brackets, the rounded frame that it stands in, and in braces the
/// area behind it, rounded or not.
class LookFixture : public PageFixture {
protected:
    /// What the pages make of its date.
    static QString date() { return dateLabel(record({}).createdAt); }

    /// "15 medium rounded accent +2 /5" is a text: size, weight, family, colour, tracking, and the
    /// spacing of its lines. "15 accent" is an icon, "r16 card line" a frame: radius, colour,
    /// outline.
    struct Look {
        QString thing;
        QString look;
        int skipped = 0;
    };
    void expectLooks(const QList<Look> &looks) {
        draw();
        for (const Look &wanted : looks)
            EXPECT_EQ(look(wanted.thing, wanted.skipped), wanted.look)
                << wanted.thing.toStdString();
    }

    /// How far the second thing is below the first, or, if they stand side by side, to its right.
    struct Gap {
        QString first;
        QString second;
        double distance;
    };
    void expectGaps(const QList<Gap> &gaps) {
        draw();
        for (const Gap &wanted : gaps) {
            const QRectF first = place(wanted.first);
            const QRectF second = place(wanted.second);
            const double gap = second.top() >= first.bottom() ? second.top() - first.bottom()
                                                              : second.left() - first.right();
            EXPECT_NEAR(gap, wanted.distance, 0.9)
                << wanted.first.toStdString() << " and " << wanted.second.toStdString();
        }
    }

    /// How far a thing is from the left and the upper edge of what is around it.
    void expectInset(const QString &thing, const QString &around, double left, double top) {
        const QPointF inset = place(thing).topLeft() - place(around).topLeft();
        EXPECT_NEAR(inset.x(), left, 0.9) << thing.toStdString();
        EXPECT_NEAR(inset.y(), top, 0.9) << thing.toStdString();
    }

    void expectSize(const QString &thing, double width, double height) {
        EXPECT_EQ(place(thing).size(), QSizeF(width, height)) << thing.toStdString();
    }

    QString look(const QString &thing, int skipped = 0) {
        const QQuickItem *seen = item(thing, skipped);
        if (!seen)
            return u"none"_qs;
        if (isBracketed(thing))
            return frameLook(*seen);
        return isSymbol(*seen) ? symbolLook(*seen) : textLook(*seen);
    }

    QString frameLook(const QQuickItem &item) {
        QString look = u"r%1 %2"_qs.arg(item.property("radius").toDouble())
                           .arg(colorName(item.property("color").value<QColor>()));
        // A rectangle without an outline tells of a black one.
        const auto *border = item.property("border").value<QObject *>();
        const auto outline = border->property("color").value<QColor>();
        if (border->property("width").toDouble() > 0 && outline != QColor(Qt::black))
            look += u' ' + colorName(outline);
        return look;
    }

    QRectF place(const QString &thing, int skipped = 0) {
        const QQuickItem *seen = item(thing, skipped);
        return seen ? seen->mapRectToScene(QRectF({}, seen->size())) : QRectF();
    }

    /// The colour's name in the palette, with its opacity where it differs.
    QString colorName(const QColor &color) {
        if (color.alpha() == 0)
            return u"clear"_qs;
        const QMetaObject *type = palette()->metaObject();
        QString shade = color.name(QColor::HexArgb);
        for (int i = type->propertyOffset(); i < type->propertyCount(); ++i) {
            const auto known = palette()->property(type->property(i).name()).value<QColor>();
            const QString name = QLatin1String(type->property(i).name());
            if (!known.isValid())
                continue;
            if (known == color)
                return name;
            // A text keeps less of its colour than a rectangle.
            if (known.rgba() == color.rgba())
                shade = name;
            else if (known.alpha() == 255 && known.rgb() == (color.rgb() | 0xff000000))
                shade = name + u' ' + QString::number(std::round(color.alphaF() * 100) / 100);
        }
        return shade;
    }

    QObject *palette() {
        if (!palette_) {
            QQmlComponent component(&engine);
            component.setData("import QtQml\nimport Lorvane\n"
                              "QtObject { readonly property QtObject it: LorPalette }",
                              {});
            palette_.reset(component.create());
        }
        return palette_->property("it").value<QObject *>();
    }

    QQuickItem *item(const QString &thing, int skipped = 0) {
        const QString key = isBracketed(thing) ? thing.mid(1, thing.size() - 2) : thing;
        names(); // lays all out
        QQuickItem *found = nullptr;
        for (const bool isSheet : {true, false})
            for (QWindow *open : QGuiApplication::topLevelWindows())
                if (auto *scene = qobject_cast<QQuickWindow *>(open);
                    scene && scene->isVisible() && isSheet == (open->modality() != Qt::NonModal))
                    findBelow(scene->contentItem(), key, skipped, found);
        if (found && isBracketed(thing))
            return frameOf(found, thing.startsWith(u'['));
        return found;
    }

private:
    /// All is where it belongs only in a frame.
    static void draw() {
        names();
        for (QWindow *open : QGuiApplication::topLevelWindows())
            if (auto *scene = qobject_cast<QQuickWindow *>(open); scene && scene->isVisible())
                scene->grabWindow();
    }

    static bool isBracketed(const QString &thing) {
        return thing.startsWith(u'[') || thing.startsWith(u'{');
    }

    static bool isA(const QQuickItem &item, const QByteArray &type) {
        return QByteArray(item.metaObject()->className()).startsWith(type + "_QML");
    }

    static bool isSymbol(const QQuickItem &item) { return isA(item, "LorSymbol"); }

    static bool isText(const QQuickItem &item) {
        return item.inherits("QQuickText") || item.inherits("QQuickTextEdit") ||
               item.inherits("QQuickTextInput") || isA(item, "LorTabularText") ||
               isA(item, "LorSelectableText");
    }

    static void findBelow(QQuickItem *item, const QString &key, int &skipped, QQuickItem *&found) {
        if (found || !item->isVisible())
            return;
        const bool fits = (isText(*item) && item->property("text").toString() == key) ||
                          (isSymbol(*item) && item->property("name").toString() == key) ||
                          isA(*item, key.toUtf8());
        if (fits && skipped-- == 0) {
            found = item;
            return;
        }
        for (QQuickItem *child : item->childItems())
            findBelow(child, key, skipped, found);
    }

    /// The rectangle around an item: an ancestor, or the background of one.
    static QQuickItem *frameOf(QQuickItem *item, bool isRounded) {
        const auto isFrame = [&](const QQuickItem *frame) {
            return frame && frame->inherits("QQuickRectangle") &&
                   (!isRounded || frame->property("radius").toDouble() > 0);
        };
        for (QQuickItem *parent = item->parentItem(); parent; parent = parent->parentItem()) {
            if (isFrame(parent))
                return parent;
            auto *back = parent->property("background").value<QQuickItem *>();
            if (isFrame(back))
                return back;
            for (QQuickItem *part : back ? back->childItems() : QList<QQuickItem *>())
                if (isFrame(part))
                    return part;
        }
        return nullptr;
    }

    QString textLook(const QQuickItem &item) {
        const auto font = item.property("font").value<QFont>();
        const bool isRounded = font.family().startsWith(u"Quicksand"_qs);
        QString look = QString::number(font.pixelSize());
        if (font.weight() == (isRounded ? QFont::DemiBold : SystemFont::semibold()))
            look += u" semibold"_qs;
        else if (font.weight() == QFont::Bold)
            look += u" bold"_qs;
        else if (font.weight() == QFont::Medium || font.family().endsWith(u"Medium"_qs))
            look += u" medium"_qs;
        if (isRounded)
            look += u" rounded"_qs;
        if (font.family() == u"monospace"_qs)
            look += u" monospaced"_qs;
        look += u' ' + colorName(item.property("color").value<QColor>());
        const double tracking = std::round(font.letterSpacing() * 10) / 10;
        if (tracking != 0)
            look += u" %1%2"_qs.arg(tracking > 0 ? u"+"_qs : QString()).arg(tracking);
        if (const double spacing = lineSpacing(item); spacing != 0)
            look += u" /%1"_qs.arg(spacing);
        return look;
    }

    static double lineSpacing(const QQuickItem &item) {
        if (const auto *document = item.property("textDocument").value<QQuickTextDocument *>())
            return document->textDocument()->firstBlock().blockFormat().lineHeight();
        if (isA(item, "LorSelectableText"))
            for (const QQuickItem *part : item.childItems().at(1)->childItems())
                if (part->inherits("QQuickTextEdit"))
                    return lineSpacing(*part);
        const auto font = item.property("font").value<QFont>();
        const double line = item.property("lineHeight").toDouble();
        return line > 0 ? std::round((line - 1) * QFontMetricsF(font).height()) : 0;
    }

    QString symbolLook(const QQuickItem &item) {
        return u"%1 %2"_qs.arg(item.property("fontSize").toDouble())
            .arg(colorName(item.property("color").value<QColor>()));
    }

    std::unique_ptr<QObject> palette_; ///< has the palette as a property
};

} // namespace lorvane
