#include "Views/Shell/ViewEngine.h"

#include "Views/Dictation/HistoryModel.h"
#include "Views/Dictation/HomeModel.h"
#include "Views/Kit/Bars.h"
#include "Views/Kit/Contrast.h"
#include "Views/Kit/DocumentText.h"
#include "Views/Kit/LineSpacing.h"
#include "Views/Kit/ReadingOrder.h"
#include "Views/Kit/Shadow.h"
#include "Views/Kit/Symbols.h"
#include "Views/Kit/SystemFont.h"
#include "Views/Library/DictionaryEditor.h"
#include "Views/Library/DictionaryModel.h"
#include "Views/Library/SnippetEditor.h"
#include "Views/Library/SnippetsModel.h"
#include "Views/Settings/ScratchpadModel.h"
#include "Views/Settings/SettingsModel.h"
#include "Views/Setup/SetupModel.h"

#include <QGuiApplication>
#include <QQmlComponent>

#include <memory>

namespace lorvane {

ViewEngine::ViewEngine(QObject *parent) : QQmlEngine(parent) {
    qmlRegisterType<Bars>("Lorvane.Models", 1, 0, "Bars");
    qmlRegisterType<Contrast>("Lorvane.Models", 1, 0, "Contrast");
    qmlRegisterType<DictionaryEditor>("Lorvane.Models", 1, 0, "DictionaryEditor");
    qmlRegisterType<DictionaryModel>("Lorvane.Models", 1, 0, "DictionaryModel");
    qmlRegisterType<DocumentText>("Lorvane.Models", 1, 0, "DocumentText");
    qmlRegisterType<HistoryModel>("Lorvane.Models", 1, 0, "HistoryModel");
    qmlRegisterType<HomeModel>("Lorvane.Models", 1, 0, "HomeModel");
    qmlRegisterType<LineSpacing>("Lorvane.Models", 1, 0, "LineSpacing");
    qmlRegisterType<ReadingOrder>("Lorvane.Models", 1, 0, "ReadingOrder");
    qmlRegisterType<ScratchpadModel>("Lorvane.Models", 1, 0, "ScratchpadModel");
    qmlRegisterType<SettingsModel>("Lorvane.Models", 1, 0, "SettingsModel");
    qmlRegisterType<SetupModel>("Lorvane.Models", 1, 0, "SetupModel");
    qmlRegisterType<SnippetEditor>("Lorvane.Models", 1, 0, "SnippetEditor");
    qmlRegisterType<SnippetsModel>("Lorvane.Models", 1, 0, "SnippetsModel");
    qmlRegisterType<SystemFont>("Lorvane.Models", 1, 0, "SystemFont");
    addImportPath(u"qrc:/qt/qml"_qs);
    addImageProvider(u"shadow"_qs, new ShadowProvider);
    addImageProvider(u"symbol"_qs, new SymbolProvider);
    QGuiApplication::setWindowIcon(Symbols::appIcon());
}

QColor ViewEngine::paletteColor(const QByteArray &name) {
    QQmlComponent component(this);
    component.setData("import QtQuick; import Lorvane; "
                      "QtObject { readonly property color value: LorPalette." +
                          name + " }",
                      {});
    const std::unique_ptr<QObject> holder(component.create());
    return holder ? holder->property("value").value<QColor>() : QColor();
}

} // namespace lorvane
