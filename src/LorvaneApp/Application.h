#pragma once

#include <QApplication>

namespace lorvane {

/// The application object. It ends whenever it is asked to: by its menu, by a signal, or by the
/// session manager when the user logs out. Qt would ask every window first, and the setup guide,
/// which only its own buttons end, would refuse.
class Application : public QApplication {
public:
    using QApplication::QApplication;

    bool event(QEvent *event) override {
        if (event->type() != QEvent::Quit)
            return QApplication::event(event);
        exit();
        return true;
    }
};

} // namespace lorvane
