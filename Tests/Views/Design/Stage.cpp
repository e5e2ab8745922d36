#include "Tests/Views/Design/Stage.h"

#include <QtQml/QQmlContext>

namespace kestrio {
namespace {

/// Of a type made in QML, the name of its file; else that of its class.
QString typeName(const QObject* object) {
    const QString name = object->metaObject()->className();
    return name.left(name.indexOf("_QML"));
}

bool shows(const QQuickItem* item) {
    return item->isVisible() && item->opacity() > 0;
}

} // namespace

QList<QQuickItem*> allItems(QQuickItem* item) {
    QList<QQuickItem*> all{item};
    for (auto* child : item->childItems())
        all += allItems(child);
    return all;
}

Stage::Stage(IconFile iconFile) {
    engine_.setImportPathList(engine_.importPathList() << "qrc:/qt/qml");
    installDesign(engine_, std::move(iconFile));
}

Stage::~Stage() {
    item_.reset();
    window_.reset();
}

QQuickItem* Stage::show(const QString& qml) {
    QQmlComponent component(&engine_);
    component.setData(("import QtQuick\nimport QtQuick.Layouts\nimport Kestrio.Design\n" + qml).toUtf8(),
                      QUrl("qrc:/staged/Staged.qml"));
    item_.reset(qobject_cast<QQuickItem*>(component.create()));
    EXPECT_NE(item_, nullptr) << component.errorString().toStdString();
    if (!item_)
        return nullptr;
    window_ = std::make_unique<QQuickWindow>();
    window_->resize(640, 480);
    item_->setParentItem(window_->contentItem());
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
    window_->requestActivate();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    QCoreApplication::processEvents();
    return item_.get();
}

QVariant Stage::value(const QString& expression) {
    if (!item_)
        return {};
    QQmlExpression asked(qmlContext(item_.get()), item_.get(), expression);
    const auto answer = asked.evaluate();
    EXPECT_FALSE(asked.hasError()) << asked.error().toString().toStdString();
    return answer;
}

QList<QQuickItem*> Stage::items(const QString& type) {
    QList<QQuickItem*> found;
    if (!window_)
        return found;
    for (auto* item : allItems(window_->contentItem()))
        if (shows(item) && typeName(item) == type)
            found.append(item);
    return found;
}

QStringList Stage::texts() {
    QStringList found;
    if (!window_)
        return found;
    for (auto* item : allItems(window_->contentItem()))
        if (item->inherits("QQuickText") && shows(item) && !item->property("text").toString().trimmed().isEmpty())
            found.append(item->property("text").toString());
    return found;
}

QQuickItem* Stage::withText(const QString& text) {
    for (auto* item : allItems(window_->contentItem()))
        if (item->inherits("QQuickText") && shows(item) && item->property("text").toString() == text)
            return item;
    ADD_FAILURE() << "nothing shows the text " << text.toStdString();
    return nullptr;
}

QPoint Stage::middleOf(QQuickItem* item) const {
    return item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
}

void Stage::click(QQuickItem* item) {
    ASSERT_NE(item, nullptr);
    QTest::mouseClick(window_.get(), Qt::LeftButton, Qt::NoModifier, middleOf(item));
    QCoreApplication::processEvents();
}

void Stage::hover(QQuickItem* item) {
    ASSERT_NE(item, nullptr);
    QTest::mouseMove(window_.get(), middleOf(item));
    QCoreApplication::processEvents();
}

void Stage::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window_.get(), key, modifiers);
    QCoreApplication::processEvents();
}

void Stage::type(const QString& text) {
    for (const QChar c : text)
        QTest::keyClick(window_.get(), c.toLatin1());
    QCoreApplication::processEvents();
}

bool Stage::becomes(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 10'000);
}

QImage Stage::picture() {
    return window_->grabWindow();
}

} // namespace kestrio
