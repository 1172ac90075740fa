#include "Fakes/FakeSavePanel.h"
#include "Platform/Linux/QtSavePanel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace lorvane {
namespace {

class Application : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("HOME", home_.path().toUtf8());
        application_ = std::make_unique<QApplication>(count_, nullptr);
    }
    void TearDown() override { application_.reset(); }

private:
    int count_ = 0;
    QTemporaryDir home_;
    std::unique_ptr<QApplication> application_;
};

const auto *const application = testing::AddGlobalTestEnvironment(new Application);

void sendKey(QWidget *widget, int key) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    }
}

/// The user of the fake, who decides beforehand.
struct InMemory {
    FakeSavePanel panel;
    QString proposed() const { return panel.proposedFileNames.last(); }
    void willChoose(const QString &path) { panel.answer = path; }
    void willCancel() { panel.answer.reset(); }
};

/// The user of Qt's own dialog, with the keys.
struct OnScreen {
    QtSavePanel panel;
    QString proposedName;

    QString proposed() const { return proposedName; }

    void willChoose(const QString &path) {
        whenOpen([path](QFileDialog &dialog) {
            dialog.findChild<QLineEdit *>()->setText(path);
            sendKey(dialog.findChild<QLineEdit *>(), Qt::Key_Return);
        });
    }

    void willCancel() {
        whenOpen([](QFileDialog &dialog) { sendKey(&dialog, Qt::Key_Escape); });
    }

private:
    void whenOpen(std::function<void(QFileDialog &)> act) {
        QTimer::singleShot(0, [this, act = std::move(act)] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            proposedName = dialog->findChild<QLineEdit *>()->text();
            act(*dialog);
        });
    }
};

template <class Driver>
class SavePanelTest : public testing::Test {
protected:
    Driver user;
    QTemporaryDir folder;
    const QString name = QStringLiteral("Lorvane History.txt");
};
using Panels = testing::Types<InMemory, OnScreen>;
TYPED_TEST_SUITE(SavePanelTest, Panels);

TYPED_TEST(SavePanelTest, GivesThePathThatWasChosen) {
    const QString path = this->folder.filePath(QStringLiteral("Größer.txt"));
    this->user.willChoose(path);
    EXPECT_EQ(this->user.panel.run(this->name), path);
    EXPECT_EQ(this->user.proposed(), this->name);
    EXPECT_FALSE(QFile::exists(path)) << "writing is the caller's";
}

TYPED_TEST(SavePanelTest, GivesNothingWhenCancelled) {
    this->user.willCancel();
    EXPECT_EQ(this->user.panel.run(this->name), std::nullopt);
}

TEST(QtSavePanelTest, NameWithoutAnEndingBecomesAPlainTextFile) {
    const QTemporaryDir folder;
    OnScreen user;
    user.willChoose(folder.filePath(QStringLiteral("history")));
    EXPECT_EQ(user.panel.run(QStringLiteral("any.txt")),
              folder.filePath(QStringLiteral("history.txt")));
}

TEST(QtSavePanelTest, ReplacingAFileIsAskedAbout) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("history.txt"));
    QFile there(path);
    ASSERT_TRUE(there.open(QIODevice::WriteOnly));
    OnScreen user;
    bool asked = false;
    user.willChoose(path);
    QTimer eachTurn;
    QObject::connect(&eachTurn, &QTimer::timeout, [&] {
        auto *question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!question)
            return;
        asked = true;
        question->button(QMessageBox::Yes)->click();
    });
    eachTurn.start(0);
    EXPECT_EQ(user.panel.run(QStringLiteral("any.txt")), path);
    EXPECT_TRUE(asked);
}

} // namespace
} // namespace lorvane
