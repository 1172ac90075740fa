#include "Core/ApplicationSupport.h"

#include "Core/DurableFile.h"

#include <QStandardPaths>

namespace lorvane {

QString applicationSupportDirectory() {
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    createFolder(path, SystemCalls::real());
    return path;
}

} // namespace lorvane
