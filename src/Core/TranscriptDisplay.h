#pragma once

#include <QString>

#include <optional>

namespace lorvane {

/// Decides what the transcript area shows, so that a late partial result can't overwrite a finished
/// text: nothing at first, the live preview while dictating, then the final text.
class TranscriptDisplay {
public:
    QString text(const QString &livePreview) const;

    /// True when a final text is there and not empty.
    bool hasFinalText() const;

    /// Shows nothing, whatever the preview says.
    void reset();

    void showLivePreview();

    void finish(const QString &text);

private:
    std::optional<QString> finalText_ = QString(); ///< absent while the preview is shown
};

} // namespace lorvane
