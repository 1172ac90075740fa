#pragma once

#include "Platform/UserDefaults.h"

#include <QHash>

namespace lorvane {

/// A store that is gone with the test.
class FakeUserDefaults final : public UserDefaults {
public:
    QHash<QString, bool> values;
    QString error;

    bool boolean(const QString &key) const override { return values.value(key, false); }
    void setBoolean(const QString &key, bool value) override { values.insert(key, value); }
    QString readError() const override { return error; }
};

} // namespace lorvane
