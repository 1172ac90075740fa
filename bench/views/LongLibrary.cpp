// The window on a library of 100,000 dictations and 2,000 dictionary entries: how long History
// takes to open, to scroll and to filter (in time of the main thread, drawing by the processor
// included), how many cards it builds, and what memory it takes.

#include "AppStore/AppStore.h"
#include "Core/LocalRepository.h"
#include "Fakes/FakePorts.h"
#include "Views/Shell/Graphics.h"
#include "Views/Shell/MainWindow.h"
#include "Views/Shell/ViewEngine.h"

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <initializer_list>
#include <random>
#include <tuple>

#include <malloc.h>

using namespace lorvane;

namespace {

constexpr int recordCount = 100'000;
constexpr int entryCount = 2'000;

bool isFine = true;

/// The time that the main thread has worked, so that a busy machine doesn't count.
class Stopwatch {
public:
    double milliseconds() const { return now() - start_; }

private:
    static double now() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }

    double start_ = now();
};

void tell(const char *what, double figure, const char *unit, double limit) {
    const bool holds = figure < limit;
    isFine = isFine && holds;
    std::printf("%-44s %8.1f %-9s (below %.0f)%s\n", what, figure, unit, limit,
                holds ? "" : "  BROKEN");
    std::fflush(stdout);
}

double residentMegabytes() {
    QFile status(u"/proc/self/status"_qs);
    if (!status.open(QFile::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    return text.mid(text.indexOf("VmRSS:") + 6, 20).trimmed().split(' ').first().toDouble() / 1024;
}

/// Dictations of 5 to 45 words, one in ten of them in a language with accents or in Japanese.
AppSnapshot longLibrary() {
    static const QStringList english{u"please"_qs, u"send"_qs,     u"the"_qs,    u"report"_qs,
                                     u"to"_qs,     u"everyone"_qs, u"before"_qs, u"tomorrow"_qs,
                                     u"and"_qs,    u"thank"_qs,    u"them"_qs,   u"for"_qs,
                                     u"their"_qs,  u"patience"_qs, u"about"_qs,  u"schedule"_qs};
    static const QStringList french{u"réunion"_qs, u"à"_qs,  u"préparer"_qs, u"l’été"_qs,
                                    u"déjà"_qs,    u"où"_qs, u"être"_qs,     u"garçon"_qs};
    static const QStringList japanese{u"会議"_qs, u"の"_qs, u"報告"_qs, u"を"_qs, u"送って"_qs};
    std::mt19937 random(7);
    const auto upTo = [&](qsizetype limit) {
        return static_cast<qsizetype>(random() % static_cast<unsigned>(limit));
    };
    AppSnapshot library;
    for (int i = 0; i < recordCount; ++i) {
        const QStringList &words = i % 20 == 5 ? french : i % 20 == 15 ? japanese : english;
        QStringList text;
        for (qsizetype count = 5 + upTo(41); count > 0; --count)
            text.append(words[upTo(words.size())]);
        TranscriptRecord record;
        record.createdAt = QDateTime::fromSecsSinceEpoch(1'800'000'000 - 600LL * i, Qt::UTC);
        record.text = text.join(u' ') + u" %1"_qs.arg(i);
        record.duration = 0.4 * static_cast<double>(text.size());
        library.history.append(record);
    }
    for (int i = 0; i < entryCount; ++i)
        library.vocabulary.append(VocabularyEntry(u"heard phrase %1"_qs.arg(i),
                                                  u"Name %1"_qs.arg(entryCount - i),
                                                  {u"another hearing %1"_qs.arg(i)}));
    return library;
}

/// The main window on a store, looked at and used from the outside.
class Scene {
public:
    explicit Scene(const Ports &ports) : store_(ports), window_(engine_, store_) {
        window_.open();
        for (QWindow *window : QGuiApplication::topLevelWindows())
            if (auto *scene = qobject_cast<QQuickWindow *>(window); scene && scene->isVisible())
                scene_ = scene;
        draw();
    }

    void draw() {
        QCoreApplication::processEvents();
        // As the event loop does, which none here runs.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        scene_->grabWindow();
    }

    /// Goes to a page, and gives the milliseconds until it is drawn.
    double open(const QString &title) {
        const Stopwatch watch;
        QAccessibleInterface *entry = find(title, QAccessible::Button);
        entry->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        draw();
        return watch.milliseconds();
    }

    /// Types a text into the page's search field and takes it back; gives the milliseconds of the
    /// slowest key.
    double search(const QString &placeholder, const QString &text) {
        QAccessibleInterface *field = find(placeholder, QAccessible::EditableText);
        qobject_cast<QQuickItem *>(field->object())->forceActiveFocus();
        double slowest = 0;
        const auto type = [&](Qt::Key key, const QString &letter) {
            const Stopwatch watch;
            QKeyEvent press(QEvent::KeyPress, key, {}, letter);
            QCoreApplication::sendEvent(scene_, &press);
            draw();
            slowest = std::max(slowest, watch.milliseconds());
        };
        for (const QChar letter : text)
            type(Qt::Key_unknown, letter);
        for (qsizetype i = 0; i < text.size(); ++i)
            type(Qt::Key_Backspace, {});
        return slowest;
    }

    struct Scrolling {
        double slowestFrame = 0; // milliseconds
        qsizetype mostVisible = 0;
        qsizetype mostBuilt = 0;
    };

    /// Moves the list of History many times, each time by `move`.
    Scrolling scroll(int times, const std::function<void(QQuickItem &list)> &move) {
        Scrolling seen;
        QQuickItem *list = find(scene_->contentItem(), "LorHistoryView");
        list->forceActiveFocus();
        for (int i = 0; i < times; ++i) {
            const Stopwatch watch;
            move(*list);
            draw();
            seen.slowestFrame = std::max(seen.slowestFrame, watch.milliseconds());
            qsizetype built = 0;
            qsizetype visible = 0;
            for (const QQuickItem *item :
                 list->property("contentItem").value<QQuickItem *>()->childItems()) {
                if (!QByteArray(item->metaObject()->className()).startsWith("HistoryCard"))
                    continue;
                ++built;
                const QRectF area = item->mapRectToItem(list, item->boundingRect());
                visible += item->isVisible() && area.bottom() > 0 && area.top() < list->height();
            }
            seen.mostBuilt = std::max(seen.mostBuilt, built);
            seen.mostVisible = std::max(seen.mostVisible, visible);
        }
        return seen;
    }

    void press(Qt::Key key) {
        QKeyEvent press(QEvent::KeyPress, key, {});
        QCoreApplication::sendEvent(scene_, &press);
    }

private:
    QAccessibleInterface *find(const QString &name, QAccessible::Role role) {
        return find(QAccessible::queryAccessibleInterface(scene_), name, role);
    }

    static QAccessibleInterface *find(QAccessibleInterface *parent, const QString &name,
                                      QAccessible::Role role) {
        for (int i = 0; i < parent->childCount(); ++i) {
            QAccessibleInterface *child = parent->child(i);
            if (!child || child->state().invisible)
                continue;
            if (child->role() == role && child->text(QAccessible::Name) == name)
                return child;
            if (QAccessibleInterface *found = find(child, name, role))
                return found;
        }
        return nullptr;
    }

    static QQuickItem *find(QQuickItem *parent, const char *type) {
        if (QByteArray(parent->metaObject()->className()).startsWith(type))
            return parent;
        for (QQuickItem *child : parent->childItems())
            if (QQuickItem *found = find(child, type))
                return found;
        return nullptr;
    }

    ViewEngine engine_;
    AppStore store_;
    MainWindow window_;
    QQuickWindow *scene_ = nullptr;
};

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QApplication application(argc, argv);
    setUpGraphics();
    QAccessible::setActive(true);

    FakePorts ports;
    ports.userDefaults.setBoolean(FirstLaunchSetup::completionKey, true);
    {
        // What the first window costs is no matter of the library.
        Scene warmUp(ports);
        warmUp.open(u"History"_qs);
        warmUp.open(u"Dictionary"_qs);
    }
    QDir().mkpath(QFileInfo(ports.libraryPath()).path());
    LocalRepository(ports.libraryPath()).save(longLibrary());
    const double onDisk = static_cast<double>(QFileInfo(ports.libraryPath()).size()) / 1048576;
    malloc_trim(0); // what making the library took is none of the window's
    const double before = residentMegabytes();
    std::printf("%d dictations, %d dictionary entries: %.1f MB on disk\n", recordCount, entryCount,
                onDisk);

    const Stopwatch watch;
    Scene scene(ports);
    std::printf("%-44s %8.1f ms\n", "Loading it and opening Home", watch.milliseconds());
    tell("Opening History", scene.open(u"History"_qs), "ms", 300);
    // By a notch of the wheel, by a page, and by a drag of the scroll bar.
    const auto by = [](double distance) {
        return [=](QQuickItem &list) {
            list.setProperty("contentY", list.property("contentY").toDouble() + distance);
        };
    };
    for (const auto &[way, times, move] :
         std::initializer_list<std::tuple<const char *, int, std::function<void(QQuickItem &)>>>{
             {"a notch", 300, by(72)},
             {"a page", 100, [&](QQuickItem &) { scene.press(Qt::Key_PageDown); }},
             {"a drag", 100, by(5000)},
             {"a page back", 100, [&](QQuickItem &) { scene.press(Qt::Key_PageUp); }}}) {
        const Scene::Scrolling seen = scene.scroll(times, move);
        tell(qPrintable(u"Slowest frame, by %1"_qs.arg(QLatin1String(way))), seen.slowestFrame,
             "ms", 50);
        std::printf("%-44s %8lld of %lld visible\n", "Most cards built", seen.mostBuilt,
                    seen.mostVisible);
        // One comes before another goes.
        tell("Cards built beyond the visible",
             static_cast<double>(seen.mostBuilt - seen.mostVisible), "cards", 2);
    }
    scene.open(u"Home"_qs);
    scene.open(u"History"_qs);
    for (const QString &text :
         {u"report to everyone"_qs, u"zzz"_qs, u"été"_qs, u"会議"_qs, u"99999"_qs})
        tell(qPrintable(u"Slowest key of “%1”"_qs.arg(text)),
             scene.search(u"Search your dictations"_qs, text), "ms", 50);
    tell("Opening Dictionary", scene.open(u"Dictionary"_qs), "ms", 300);
    tell("Slowest key in Dictionary", scene.search(u"Search your vocabulary"_qs, u"hearing 77"_qs),
         "ms", 50);
    tell("Memory taken", residentMegabytes() - before, "MB", 3 * onDisk);
    return isFine ? 0 : 1;
}
