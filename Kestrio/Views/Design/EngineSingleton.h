// One object of a type per QML engine, for QML and C++ alike, from before anything is loaded until the engine goes.
// Main thread.
#pragma once

#include <QtQml/QQmlEngine>
#include <memory>

namespace kestrio {

template <class Type>
Type& engineSingleton(QQmlEngine& engine) {
    if (auto* const known = engine.findChild<Type*>(QString(), Qt::FindDirectChildrenOnly))
        return *known;
    auto made = std::make_unique<Type>(nullptr);
    QJSEngine::setObjectOwnership(made.get(), QJSEngine::CppOwnership);
    made->setParent(&engine);
    return *made.release();
}

} // namespace kestrio
