#include "Platform/Linux/QtSavePanel.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QWindow>

namespace lorvane {

std::optional<QString> QtSavePanel::run(const QString &proposedFileName) {
    QFileDialog dialog;
    // GTK's dialog has none of its own.
    dialog.setWindowTitle(QStringLiteral("Save As"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setMimeTypeFilters({QStringLiteral("text/plain")});
    dialog.setDefaultSuffix(QStringLiteral("txt"));
    dialog.setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog.selectFile(proposedFileName);
    // Stays above the window that asked for it.
    dialog.winId();
    dialog.windowHandle()->setTransientParent(QGuiApplication::focusWindow());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().first();
}

} // namespace lorvane
