#include "Core/LibraryFormat.h"

#include <cstdlib>

using namespace lorvane;

/// Any bytes are a library or a failure; a library survives being written and read again.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    try {
        const AppSnapshot snapshot = decodeLibrary(bytes);
        const QByteArray written = encodeLibrary(snapshot);
        const AppSnapshot again = decodeLibrary(written);
        if (!(again == snapshot) || encodeLibrary(again) != written)
            std::abort();
        VocabularyEntry::consolidated(snapshot.vocabulary);
    } catch (const DecodingError &error) {
        if (!error.localizedDescription().contains(QStringLiteral("(line ")))
            std::abort();
    }
    return 0;
}
