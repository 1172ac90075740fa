#pragma once

#include "Platform/Speech.h"
#include "Platform/Task.h"

#include <functional>
#include <optional>

/// Hands a whole recording to the installed model, in one go. Main thread only.
namespace lorvane::LongFormFileRecognition {

/// Gets the whole text so far, after each final segment.
using OnUpdate = std::function<void(const QString &text)>;

/// The text of the file at `url`, or none where no model for whole files is installed; nothing is
/// ever downloaded. Throws LocalizedError when it began and then failed, was cancelled, or took
/// longer than three times the `duration` (in seconds), of which it has two minutes at least.
Async<std::optional<QString>> recognizeIfInstalled(Clock &clock, Speech &speech, QString url,
                                                   QString localeIdentifier,
                                                   QStringList contextualStrings, double duration,
                                                   OnUpdate onUpdate);

} // namespace lorvane::LongFormFileRecognition
