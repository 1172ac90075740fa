#include "Platform/Linux/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace lorvane {

void QtPasteboard::setText(const QString &text) { QGuiApplication::clipboard()->setText(text); }

} // namespace lorvane
