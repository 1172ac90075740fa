#pragma once

#include <QFont>
#include <QObject>

namespace lorvane {

/// What the window has to know about the desktop's own font. Needs the application object.
class SystemFont : public QObject {
    Q_OBJECT
    Q_PROPERTY(int semibold READ semibold CONSTANT)

public:
    using QObject::QObject;

    static int semibold();
    /// The weight that is seen as semibold in a family: where it has no face that is so heavy,
    /// Bold, for which the regular face is made bolder; semibold would look like regular.
    static QFont::Weight semiboldOf(const QString &family);
};

} // namespace lorvane
