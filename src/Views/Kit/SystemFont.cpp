#include "Views/Kit/SystemFont.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>

#include <algorithm>

namespace lorvane {

int SystemFont::semibold() { return semiboldOf(QFontInfo(QGuiApplication::font()).family()); }

QFont::Weight SystemFont::semiboldOf(const QString &family) {
    const QStringList styles = QFontDatabase::styles(family);
    const bool isThere = std::any_of(styles.begin(), styles.end(), [&](const QString &style) {
        return QFontDatabase::weight(family, style) >= QFont::DemiBold;
    });
    return isThere ? QFont::DemiBold : QFont::Bold;
}

} // namespace lorvane
