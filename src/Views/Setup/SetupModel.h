#pragma once

#include "AppStore/AppStore.h"

#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace lorvane {

/// What the setup guide shows, and the moves between its steps.
class SetupModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(lorvane::AppStore *store READ store WRITE setStore NOTIFY storeChanged)
    Q_PROPERTY(QStringList steps READ steps CONSTANT)
    Q_PROPERTY(QSize guideSize READ guideSize CONSTANT)

    Q_PROPERTY(int step READ step NOTIFY stepChanged)
    Q_PROPERTY(QString position READ position NOTIFY stepChanged)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY stepChanged)
    Q_PROPERTY(QString continueLabel READ continueLabel NOTIFY stepChanged)

    Q_PROPERTY(bool asksForGrant READ asksForGrant NOTIFY stepChanged)
    Q_PROPERTY(QString title READ title NOTIFY stepChanged)
    Q_PROPERTY(QString detail READ detail NOTIFY stepChanged)
    Q_PROPERTY(QString panel READ panel NOTIFY stepChanged)
    Q_PROPERTY(QString symbol READ symbol NOTIFY stepChanged)
    Q_PROPERTY(QString instructions READ instructions NOTIFY stepChanged)
    Q_PROPERTY(QString remark READ remark NOTIFY stepChanged)
    Q_PROPERTY(QString settingsLabel READ settingsLabel NOTIFY stepChanged)

    Q_PROPERTY(QString practice MEMBER practice_ NOTIFY practiceChanged)

    Q_PROPERTY(bool isAllowed READ isAllowed NOTIFY grantsChanged)
    Q_PROPERTY(QString requestLabel READ requestLabel NOTIFY grantsChanged)
    Q_PROPERTY(QString grantStatus READ grantStatus NOTIFY grantsChanged)

public:
    using QObject::QObject;

    AppStore *store() const { return store_; }
    void setStore(AppStore *store);

    /// The labels of the step bar.
    static QStringList steps();
    /// The size of the guide on the main screen.
    static QSize guideSize();
    /// The same on a screen with this work area, or on none.
    static QSize guideSize(const std::optional<QSize> &screen);

    int step() const { return store_ ? store_->setupStepNumber() : 0; }
    QString position() const;
    bool canGoBack() const { return step() > 0; }
    QString continueLabel() const;

    // The three steps that ask for a grant; empty texts on the other two.
    bool asksForGrant() const;
    QString title() const;
    QString detail() const;
    QString panel() const;
    QString symbol() const;
    QString instructions() const;
    QString remark() const;
    QString settingsLabel() const;
    bool isAllowed() const;
    QString requestLabel() const;
    QString grantStatus() const;

    Q_INVOKABLE void goOn();
    Q_INVOKABLE void goBack();
    /// Asks for the grant of the present step.
    Q_INVOKABLE void request();
    /// Opens the system's page of the present step's grant.
    Q_INVOKABLE void openSettings();
    Q_INVOKABLE void showApplication();

Q_SIGNALS:
    void storeChanged();
    void stepChanged();
    void grantsChanged();
    void practiceChanged();

private:
    QPointer<AppStore> store_;
    QString practice_; ///< what was dictated into the practice field; it goes with the guide
};

} // namespace lorvane
