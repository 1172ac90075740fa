#include "Views/Kit/Bars.h"
#include "Views/Kit/Contrast.h"
#include "Views/Kit/Formatting.h"
#include "Views/Kit/Shadow.h"
#include "Views/Kit/Symbols.h"
#include "Views/Kit/SystemFont.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLocale>
#include <QPainter>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

TEST(SymbolsTest, EveryNameHasAnImageInTheWantedColour) {
    ASSERT_FALSE(Symbols::names().isEmpty());
    for (const QString &name : Symbols::names()) {
        const QImage image = Symbols::image(name, Qt::red, QSize(32, 32));
        ASSERT_EQ(image.size(), QSize(32, 32)) << name.toStdString();
        bool isDrawn = false;
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x) {
                const QColor pixel = image.pixelColor(x, y);
                isDrawn |= pixel.alpha() == 255;
                EXPECT_TRUE(pixel.alpha() == 0 || (pixel.green() == 0 && pixel.blue() == 0));
            }
        }
        EXPECT_TRUE(isDrawn) << name.toStdString();
    }
}

TEST(SymbolsTest, EveryImageHasAName) {
    const auto images = QDir(u":/qt/qml/Lorvane/icons"_qs).entryList({u"*.svg"_qs});
    EXPECT_EQ(images.size(), Symbols::names().size());
}

TEST(SymbolsTest, AnUnknownNameHasNoImage) {
    EXPECT_TRUE(Symbols::image(u"no.such.symbol"_qs, Qt::red, QSize(16, 16)).isNull());
}

TEST(SymbolsTest, EveryNameInThePagesIsKnown) {
    static const QRegularExpression use(
        uR"re((?:\bname|symbol|icon): (?:[\w.]+ \? )?"([a-z0-9.]+)"(?: : "([a-z0-9.]+)")?)re"_qs);
    int found = 0;
    QDirIterator files(u":/qt/qml/Lorvane"_qs, {u"*.qml"_qs}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QFile::ReadOnly));
        auto matches = use.globalMatch(QString::fromUtf8(file.readAll()));
        while (matches.hasNext()) {
            const auto match = matches.next();
            for (int group = 1; group <= match.lastCapturedIndex(); ++group) {
                ++found;
                EXPECT_TRUE(Symbols::names().contains(match.captured(group)))
                    << file.fileName().toStdString() << ": " << match.captured(group).toStdString();
            }
        }
    }
    EXPECT_GE(found, 10);
}

TEST(FormattingTest, NumbersAreGroupedByTheLocale) {
    EXPECT_EQ(groupedNumber(999), u"999"_qs);
    EXPECT_EQ(groupedNumber(1234567), u"1,234,567"_qs);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(groupedNumber(1234567), u"1.234.567"_qs);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

TEST(FormattingTest, DatesAreAbbreviatedWithAShortTime) {
    const QDateTime date({2026, 3, 14}, {15, 9, 26}, Qt::UTC);
    // The blank before PM is a narrow one in newer data.
    EXPECT_EQ(dateLabel(date).replace(QChar(0x202F), u' '), u"Mar 14, 2026, 3:09 PM"_qs);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(dateLabel(date), u"14.03.2026, 15:09"_qs);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

TEST(ContrastTest, EitherSettingAsksForMoreAndOthersDont) {
    Contrast contrast;
    const auto take = [&](const QString &space, const QString &key, const QVariant &value) {
        QMetaObject::invokeMethod(&contrast, "take", Q_ARG(QString, space), Q_ARG(QString, key),
                                  Q_ARG(QDBusVariant, QDBusVariant(value)));
        return contrast.isHigh();
    };
    const QString standard = u"org.freedesktop.appearance"_qs;
    const QString gnome = u"org.gnome.desktop.a11y.interface"_qs;
    EXPECT_FALSE(contrast.isHigh());
    EXPECT_FALSE(take(standard, u"color-scheme"_qs, 1U));
    EXPECT_FALSE(take(u"org.elsewhere"_qs, u"contrast"_qs, 1U));
    EXPECT_TRUE(take(standard, u"contrast"_qs, 1U));
    EXPECT_TRUE(take(gnome, u"high-contrast"_qs, true));
    EXPECT_TRUE(take(standard, u"contrast"_qs, 0U));
    EXPECT_FALSE(take(gnome, u"high-contrast"_qs, false));
    EXPECT_TRUE(take(standard, u"contrast"_qs, QVariant::fromValue(QDBusVariant(1U))))
        << "as an answer has it";
}

class BarsTest : public testing::Test {
protected:
    BarsTest() {
        bars.setSpacing(3);
        bars.setDuration(80);
        bars.setHeights({3, 22});
    }

    QVariantAnimation &animation() { return *bars.findChild<QVariantAnimation *>(); }

    Bars bars;
};

TEST_F(BarsTest, ARowIsAsWideAsItsBarsAndTheGapsBetween) {
    EXPECT_EQ(bars.implicitWidth(), 11);
    bars.setHeights(QList<double>(34, 3));
    EXPECT_EQ(bars.implicitWidth(), 235);
}

TEST_F(BarsTest, TheFirstHeightsAreThereAtOnceAndOthersAreMovedTo) {
    EXPECT_EQ(bars.drawnHeights(), (QList<double>{3, 22}));
    bars.setHeights({13, 12});
    EXPECT_EQ(bars.drawnHeights(), (QList<double>{3, 22}));
    animation().setCurrentTime(40);
    EXPECT_EQ(bars.drawnHeights(), (QList<double>{8, 17}));
    bars.setHeights({18, 17});
    EXPECT_EQ(bars.drawnHeights(), (QList<double>{8, 17})) << "from where they are";
    animation().setCurrentTime(80);
    EXPECT_EQ(bars.drawnHeights(), (QList<double>{18, 17}));
}

TEST_F(BarsTest, ARowThatIsHiddenDoesNotMove) {
    bars.setVisible(false);
    bars.setHeights({13, 12});
    EXPECT_EQ(bars.drawnHeights(), (QList<double>{13, 12}));
}

TEST_F(BarsTest, EachBarIsDrawnInTheMiddleWithItsOpacity) {
    bars.setColor(Qt::red);
    bars.setOpacities({1, 0.5});
    bars.setSize(QSizeF(11, 22));
    QImage image(11, 22, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    bars.paint(&painter);
    painter.end();
    EXPECT_EQ(image.pixelColor(2, 11), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(2, 5).alpha(), 0) << "above the low bar";
    EXPECT_EQ(image.pixelColor(5, 11).alpha(), 0) << "between the two";
    EXPECT_NEAR(image.pixelColor(9, 5).alphaF(), 0.5, 0.01);
}

TEST(SystemFontTest, AFontOfOneWeightIsMadeBolderForSemibold) {
    EXPECT_EQ(SystemFont::semiboldOf(u"DejaVu Sans"_qs), QFont::DemiBold);
    EXPECT_EQ(SystemFont::semiboldOf(u"VL PGothic"_qs), QFont::Bold);
}

TEST(ShadowTest, AShadowIsFullInTheMiddleHalfAtTheEdgeAndGoneOutside) {
    const QImage shadow = shadowImage(QSize(100, 100), 24, 12, QColor(200, 0, 0, 200));
    EXPECT_NEAR(shadow.pixelColor(50, 50).alpha(), 200, 2);
    EXPECT_NEAR(shadow.pixelColor(50, 12).alpha(), 100, 10);
    EXPECT_LE(shadow.pixelColor(50, 0).alpha(), 8);
    EXPECT_LE(shadow.pixelColor(2, 2).alpha(), 1) << "the corners are round";
}

} // namespace
} // namespace lorvane
