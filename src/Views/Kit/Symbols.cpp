#include "Views/Kit/Symbols.h"

#include <QHash>
#include <QImageReader>
#include <QPainter>

namespace lorvane {

namespace {

/// The design's names by the file of the same meaning in assets/icons.
const QHash<QString, QString> &files() {
    static const QHash<QString, QString> table{
        {u"accessibility"_qs, u"universal-access"_qs},
        {u"character.book.closed"_qs, u"journal-bookmark"_qs},
        {u"checkmark"_qs, u"check-lg"_qs},
        {u"checkmark.circle"_qs, u"check-circle"_qs},
        {u"checkmark.circle.fill"_qs, u"check-circle-fill"_qs},
        {u"chevron.up.chevron.down"_qs, u"chevron-expand"_qs},
        {u"circle"_qs, u"circle"_qs},
        {u"clock"_qs, u"clock"_qs},
        {u"clock.arrow.circlepath"_qs, u"clock-history"_qs},
        {u"doc.on.doc"_qs, u"files"_qs},
        {u"ellipsis"_qs, u"three-dots"_qs},
        {u"exclamationmark.circle"_qs, u"exclamation-circle"_qs},
        {u"hand.raised.fill"_qs, u"shield-lock-fill"_qs},
        {u"info.circle"_qs, u"info-circle"_qs},
        {u"lightbulb"_qs, u"lightbulb"_qs},
        {u"lock.shield"_qs, u"shield-lock"_qs},
        {u"magnifyingglass"_qs, u"search"_qs},
        {u"mic.fill"_qs, u"mic-fill"_qs},
        {u"minus.circle"_qs, u"dash-circle"_qs},
        {u"pencil"_qs, u"pencil"_qs},
        {u"plus"_qs, u"plus-lg"_qs},
        {u"plus.circle"_qs, u"plus-circle"_qs},
        {u"quote.bubble"_qs, u"chat-quote"_qs},
        {u"slider.horizontal.3"_qs, u"sliders"_qs},
        {u"square.and.arrow.up"_qs, u"box-arrow-up"_qs},
        {u"square.and.pencil"_qs, u"pencil-square"_qs},
        {u"square.grid.2x2"_qs, u"grid"_qs},
        {u"stop.fill"_qs, u"stop-fill"_qs},
        {u"text.alignleft"_qs, u"text-left"_qs},
        {u"text.bubble"_qs, u"chat-text"_qs},
        {u"textformat.abc"_qs, u"fonts"_qs},
        {u"trash"_qs, u"trash"_qs},
        {u"tray"_qs, u"inbox"_qs},
        {u"waveform"_qs, u"soundwave"_qs},
        {u"waveform.circle.fill"_qs, u"soundwave-circle-fill"_qs},
        {u"xmark"_qs, u"x-lg"_qs},
        {u"xmark.circle.fill"_qs, u"x-circle-fill"_qs},
    };
    return table;
}

} // namespace

QStringList Symbols::names() { return files().keys(); }

QImage Symbols::image(const QString &name, const QColor &color, const QSize &size) {
    const QString file = files().value(name);
    if (file.isEmpty())
        return {};
    QImageReader reader(u":/qt/qml/Lorvane/icons/%1.svg"_qs.arg(file));
    reader.setScaledSize(size);
    QImage image = reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QIcon Symbols::icon(const QString &name, const QColor &color) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48})
        icon.addPixmap(QPixmap::fromImage(image(name, color, QSize(side, side))));
    return icon;
}

QIcon Symbols::appIcon() {
    QIcon icon;
    for (const int side : {16, 32, 48, 64, 128, 256}) {
        QImageReader reader(u":/qt/qml/Lorvane/AppIcon.svg"_qs);
        reader.setScaledSize(QSize(side, side));
        icon.addPixmap(QPixmap::fromImage(reader.read()));
    }
    return icon;
}

QImage SymbolProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize) {
    const QString name = id.section(u'/', 0, 0);
    const QColor color(u"#"_qs + id.section(u'/', 1, 1));
    const QImage image =
        Symbols::image(name, color, requestedSize.isEmpty() ? QSize(16, 16) : requestedSize);
    if (size)
        *size = image.size();
    return image;
}

} // namespace lorvane
