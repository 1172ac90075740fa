#include "Speech/Prompts.h"

#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

namespace lorvane {

QString promptPath(const QString &name) {
    return u"/usr/share/asterisk/sounds/en_US_f_Allison/%1.g722"_qs.arg(name);
}

const std::vector<Prompt> &prompts() {
    static const std::vector<Prompt> read = [] {
        std::vector<Prompt> found;
        QProcess unpack;
        unpack.start(
            u"gzip"_qs,
            {u"-dc"_qs, u"/usr/share/doc/asterisk-core-sounds-en/core-sounds-en.txt.gz"_qs});
        unpack.waitForFinished(-1);
        static const QRegularExpression line(u"^([\\w/.-]+): (.+)$"_qs);
        static const QRegularExpression unspoken(u"[\\[\\]()*#\\d]"_qs);
        for (const QString &text : QString::fromUtf8(unpack.readAllStandardOutput()).split(u'\n')) {
            const QRegularExpressionMatch match = line.match(text.trimmed());
            const QString path = promptPath(match.captured(1));
            const QString transcript = match.captured(2).simplified();
            if (match.hasMatch() && transcript.count(u' ') >= 3 && !transcript.contains(unspoken) &&
                QFileInfo::exists(path))
                found.push_back({path, transcript});
        }
        return found;
    }();
    return read;
}

} // namespace lorvane
