#include "Kestrio/Views/Design/Design.h"

#include "Kestrio/Views/Design/AppIconImages.h"
#include "Kestrio/Views/Design/Resources.h"
#include "Kestrio/Views/Design/SymbolImages.h"

#include <QtGui/QFont>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlComponent>
#include <memory>
#include <utility>

namespace kestrio {

void installFonts() {
    static const bool areInstalled = [] {
        for (const auto* style : {"Regular", "Medium", "SemiBold"})
            QFontDatabase::addApplicationFont(resourcePath(QString("Fonts/InterTabular-%1.otf").arg(style)));
        return true;
    }();
    if (areInstalled)
        QGuiApplication::setFont(QFont(fontFamily));
}

Appearance& installDesign(QQmlEngine& engine, IconFile iconFile) {
    installFonts();
    // The second form of the place of all modules is the one by which Qt 6.4 tells the module that a file belongs to,
    // and so finds the types that it may use without an import.
    engine.setImportPathList(engine.importPathList() << "qrc:/qt/qml"
                                                     << "file::/qt/qml");
    // The engine takes the providers over.
    engine.addImageProvider("symbol", std::make_unique<SymbolImages>().release());
    engine.addImageProvider("app", std::make_unique<AppIconImages>(std::move(iconFile)).release());
    // The module's types are known from its first import on.
    QQmlComponent(&engine).setData("import QtQml\nimport Kestrio.Design\nQtObject {}", {});
    return appearance(engine);
}

} // namespace kestrio
