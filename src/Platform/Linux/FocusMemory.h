#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace lorvane {

/// What one application has told of its focus, as the paths of its elements.
///
/// A grab of the keyboard makes many applications say that their element has lost the focus, though
/// the user is still there; and some say of a whole pane that it gained the focus just after its
/// text did. So an element stays a candidate until another one has gained the focus after it lost
/// it.
class FocusMemory {
public:
    void gained(const QString &element);
    void lost(const QString &element);
    /// The event of older toolkits, which have no `lost`. Some send both: then it says less.
    void gainedInOldWay(const QString &element);
    /// What an element says that was told to have gained the focus: it doesn't have it. Some tell
    /// of their last field only after the user has gone on to another.
    void denied(const QString &element);
    void windowActivated(const QString &window);
    void windowDeactivated(const QString &window);
    /// What a search has found: counts only as long as the application has told nothing itself.
    void found(const QString &element);
    void foundActiveWindow(const QString &window);
    /// An element that isn't there any more.
    void forget(const QString &element);

    /// The elements that may hold the focus, the last one to gain it first; at most four.
    QStringList candidates() const;
    /// Whether one of its windows has the focus, as far as the application knows.
    bool isActive() const { return !activeWindow_.isEmpty(); }

private:
    void add(const QString &element);

    struct Candidate {
        QString element;
        bool hasLost = false;
    };
    QList<Candidate> candidates_;
    QString activeWindow_;
    bool hasTold_ = false;
    bool tellsOfLoss_ = false;
};

} // namespace lorvane
