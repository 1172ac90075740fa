#pragma once

#include <QString>

#include <vector>

namespace lorvane {

/// A studio recording of one sentence or more, from the Debian package
/// asterisk-core-sounds-en-g722.
struct Prompt {
    QString path;
    QString transcript;
};

/// The recordings whose script says every word: at least four of them and no digits or notes. Empty
/// when the package is not installed.
const std::vector<Prompt> &prompts();

/// The path of a recording such as "beep".
QString promptPath(const QString &name);

} // namespace lorvane
