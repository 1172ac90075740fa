#pragma once

#include "AppStore/AppStore.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace lorvane {

/// The free text of the Scratchpad page. A change goes straight to the store.
class ScratchpadModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(lorvane::AppStore *store READ store WRITE setStore NOTIFY storeChanged)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY textChanged)
    Q_PROPERTY(QString wordCount READ wordCount NOTIFY textChanged)

public:
    using QObject::QObject;

    AppStore *store() const { return store_; }
    void setStore(AppStore *store);

    QString text() const { return store_ ? store_->scratchpad() : QString(); }
    void setText(const QString &text);
    /// A text of blanks isn't empty.
    bool isEmpty() const { return text().isEmpty(); }
    /// The number of words with its unit.
    QString wordCount() const;

Q_SIGNALS:
    void storeChanged();
    void textChanged();

private:
    QPointer<AppStore> store_;
};

} // namespace lorvane
