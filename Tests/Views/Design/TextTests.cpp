#include "Tests/Views/Design/Stage.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QRegularExpression>

namespace kestrio {
namespace {

TEST(FilterField, showsThePromptUntilSomethingIsTyped) {
    Stage stage;
    auto* const field = stage.show("FilterField { focus: true }");
    field->forceActiveFocus();
    EXPECT_EQ(stage.texts(), QStringList{"Filter"});
    EXPECT_TRUE(stage.items("IconButton").isEmpty());
    stage.type("ab");
    EXPECT_EQ(field->property("text").toString(), "ab");
    EXPECT_TRUE(stage.texts().isEmpty());
}

TEST(FilterField, isClearedByItsButtonAndKeepsTheKeyboard) {
    Stage stage;
    auto* const field = stage.show("FilterField { text: 'ab' }");
    ASSERT_EQ(stage.items("IconButton").size(), 1);
    EXPECT_EQ(stage.items("IconButton")[0]->property("symbol").toString(), "xmark.circle.fill");
    stage.click(stage.items("IconButton")[0]);
    EXPECT_EQ(field->property("text").toString(), "");
    EXPECT_TRUE(field->hasActiveFocus());
}

TEST(FilterField, isClearedByEscapeAndThenLetsItPass) {
    Stage stage;
    stage.show("FocusScope { id: page; property int escapes: 0; focus: true; width: 300; height: 50\n"
               "Keys.onEscapePressed: escapes += 1\nFilterField { id: field; focus: true; text: 'ab' } }");
    stage.value("field.forceActiveFocus()");
    stage.press(Qt::Key_Escape);
    EXPECT_EQ(stage.value("field.text").toString(), "");
    EXPECT_EQ(stage.value("page.escapes").toInt(), 0);
    stage.press(Qt::Key_Escape);
    EXPECT_EQ(stage.value("page.escapes").toInt(), 1);
}

/// What a person recorded may look like markup, which could fetch pictures from anywhere.
TEST(Text, isNeverTakenForMarkup) {
    static const QRegularExpression plainType("(?m)^\\s*(?:contentItem: )?(Text|TextEdit|Label|T\\.Label) \\{");
    QDirIterator files(QString(KESTRIO_SOURCE) + "/Kestrio/Views", {"*.qml"}, QDir::Files,
                       QDirIterator::Subdirectories);
    int count = 0;
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const auto text = QString::fromUtf8(file.readAll());
        ++count;
        qsizetype used = 0;
        for ([[maybe_unused]] const auto& match : plainType.globalMatch(text))
            ++used;
        EXPECT_GE(text.count("textFormat: Text.PlainText"), used) << file.fileName().toStdString();
    }
    EXPECT_GT(count, 50);
}

TEST(Line, isCutShortAtItsEnd) {
    Stage stage;
    auto* const line = stage.show("Line { text: 'a title that is much too long for its place'; width: 80 }");
    EXPECT_TRUE(line->property("truncated").toBool());
    EXPECT_EQ(line->property("lineCount").toInt(), 1);
}

TEST(Paragraph, takesTheLinesThatItNeeds) {
    Stage stage;
    auto* const text = stage.show("Paragraph { text: 'words and words and words and words'; width: 80 }");
    EXPECT_GT(text->property("lineCount").toInt(), 2);
}

} // namespace
} // namespace kestrio
