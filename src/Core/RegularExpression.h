#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <memory>

struct URegularExpression;

namespace lorvane {

/// A regular expression in ICU's syntax. Matching works on the text's own memory. An expression
/// that doesn't compile matches nothing. One object isn't for two threads at once.
class RegularExpression {
public:
    enum class Case { sensitive, insensitive };

    /// A match as offset and length in UTF-16 units.
    struct Range {
        qsizetype start = 0;
        qsizetype length = 0;
        bool operator==(const Range &) const = default;
    };

    explicit RegularExpression(const QString &pattern, Case sensitivity = Case::sensitive);

    bool isValid() const { return expression_ != nullptr; }

    /// All matches, left to right, that don't overlap.
    QList<Range> matches(QStringView text) const;

    /// The text with every match replaced. `replacement` may refer to groups as "$1".
    QString replacingMatches(const QString &text, const QString &replacement) const;

    /// The pattern in which every character of `literal` stands for itself.
    static QString escapedPattern(QStringView literal);

    /// The replacement in which every character of `literal` stands for itself.
    static QString escapedTemplate(QStringView literal);

private:
    struct Close {
        void operator()(URegularExpression *expression) const;
    };
    std::unique_ptr<URegularExpression, Close> expression_;
};

} // namespace lorvane
