#pragma once

#include <QString>

#include <exception>

namespace lorvane {

/// An error with words fit to show. Everything that this program throws derives from it, and what
/// libraries and the system report is turned into one where it happens.
class LocalizedError : public std::exception {
public:
    explicit LocalizedError(QString description)
        : description_(std::move(description)), utf8_(description_.toUtf8()) {}

    const QString &localizedDescription() const { return description_; }
    const char *what() const noexcept override { return utf8_.constData(); }

private:
    QString description_;
    QByteArray utf8_;
};

} // namespace lorvane
