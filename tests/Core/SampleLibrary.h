#pragma once

#include "Core/Models.h"

#include <QByteArray>

namespace lorvane::samples {

/// A library with one of everything, and its file to the byte.
inline AppSnapshot library() {
    return {.history = {{QUuid(QStringLiteral("3F2504E0-4F89-41D3-9A0C-0305E82C3301")),
                         QDateTime(QDate(2026, 3, 14), QTime(9, 26, 53), Qt::UTC),
                         QStringLiteral("Send the report today."), 4.25}},
            .vocabulary = {{QStringLiteral("kube ctl"),
                            QStringLiteral("kubectl"),
                            {QStringLiteral("cube control"), QStringLiteral("cube cuddle")},
                            QUuid(QStringLiteral("16FD2706-8BAF-433B-82EB-8C7FADA847DA"))}},
            .snippets = {{QUuid(QStringLiteral("7C9E6679-7425-40DE-944B-E07FC1F90AE7")),
                          QStringLiteral("sign off"), QStringLiteral("Kind regards,")}}};
}

inline QByteArray libraryFile() {
    return R"({
  "history" : [
    {
      "createdAt" : "2026-03-14T09:26:53Z",
      "duration" : 4.25,
      "id" : "3F2504E0-4F89-41D3-9A0C-0305E82C3301",
      "text" : "Send the report today."
    }
  ],
  "schemaVersion" : 2,
  "scratchpad" : "",
  "settings" : {
    "autoPaste" : false,
    "languageIdentifier" : "en-AU",
    "removeFillers" : true,
    "smartPunctuation" : true
  },
  "snippets" : [
    {
      "content" : "Kind regards,",
      "id" : "7C9E6679-7425-40DE-944B-E07FC1F90AE7",
      "trigger" : "sign off"
    }
  ],
  "vocabulary" : [
    {
      "aliases" : [
        "cube control",
        "cube cuddle"
      ],
      "id" : "16FD2706-8BAF-433B-82EB-8C7FADA847DA",
      "phrase" : "kube ctl",
      "replacement" : "kubectl"
    }
  ]
})";
}

} // namespace lorvane::samples
