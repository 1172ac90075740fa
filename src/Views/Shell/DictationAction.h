#pragma once

#include <QAction>

namespace lorvane {

class AppStore;

/// The entry of a menu that starts a dictation or finishes the one that runs. It has no key of its
/// own. Main thread only.
class DictationAction : public QAction {
    Q_OBJECT
public:
    /// `store` outlives it.
    explicit DictationAction(AppStore &store, QObject *parent = nullptr);

private:
    void refresh();

    AppStore &store_;
};

} // namespace lorvane
