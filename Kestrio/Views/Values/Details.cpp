#include "Kestrio/Views/Values/Details.h"

namespace kestrio {

QVariantMap toVariant(const AppDetail& detail) {
    return Fields()
        .add("header", toVariant(detail.header))
        .add("categoryMenu", toVariant(detail.categoryMenu))
        .add("websites", toVariant(detail.websites))
        .add("windows", toVariant(detail.windows))
        .add("alongside", toVariant(detail.alongside));
}

QVariantMap toVariant(const DomainDetail& detail) {
    return Fields()
        .add("header", toVariant(detail.header))
        .add("categoryMenu", toVariant(detail.categoryMenu))
        .add("pages", toVariant(detail.pages))
        .add("alongside", toVariant(detail.alongside));
}

QVariantMap toVariant(const ProjectDetail& detail) {
    return Fields()
        .add("header", toVariant(detail.header))
        .add("apps", toVariant(detail.apps))
        .add("items", toVariant(detail.items));
}

QVariant toVariant(const ProjectRulesEditor::Row& row) {
    Fields fields;
    fields.text("id", row.id).text("keyword", row.keyword).add("isIgnored", row.isIgnored);
    return row.isIgnored ? fields.words("project", row.project) : fields.text("project", row.project);
}

QVariantMap toVariant(const ProjectRulesEditor& editor) {
    using Editor = ProjectRulesEditor;
    return Fields()
        .add("rows", toVariants(editor.rows))
        .words("help", std::string_view(Editor::help))
        .words("keywordPrompt", std::string_view(Editor::keywordPrompt))
        .words("projectPrompt", std::string_view(Editor::projectPrompt))
        .words("addTitle", std::string_view(Editor::addTitle))
        .words("deleteTitle", std::string_view(Editor::deleteTitle))
        .text("deleteSymbol", std::string_view(Editor::deleteSymbol))
        .words("emptyText", std::string_view(Editor::emptyText));
}

} // namespace kestrio
