#include "Kestrio/Views/Design/SymbolSet.h"

#include "Kestrio/Views/Design/Resources.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

namespace kestrio {
namespace {

/// A drawing's opening tag, and its shapes, the one that frames it first.
struct Shapes {
    QString opening;
    QStringList shapes;
};

Shapes shapesOf(const QByteArray& drawing) {
    static const QRegularExpression opening("<svg[^>]*>");
    static const QRegularExpression shape("<(path|rect|circle|line|polyline|polygon|ellipse)[^>]*/>");
    const auto text = QString::fromUtf8(drawing);
    Shapes shapes{opening.match(text).captured(), {}};
    for (const auto& match : shape.globalMatch(text)) {
        const bool isFrame = match.captured(1) == "circle" || match.captured(1) == "rect";
        if (isFrame)
            shapes.shapes.prepend(match.captured());
        else
            shapes.shapes.append(match.captured());
    }
    return shapes;
}

QByteArray assembled(const QString& opening, const QStringList& shapes) {
    return (opening + shapes.join("") + "</svg>").toUtf8();
}

QString filled(QString opening) {
    return opening.replace("fill=\"none\"", "fill=\"currentColor\"");
}

void draw(QPainter& painter, QByteArray drawing, const QColor& color, QSize pixels) {
    const double side = std::min(pixels.width(), pixels.height());
    drawing.replace("currentColor", color.name(QColor::HexRgb).toLatin1());
    QSvgRenderer(drawing).render(&painter,
                                 QRectF((pixels.width() - side) / 2, (pixels.height() - side) / 2, side, side));
}

} // namespace

const SymbolSet& SymbolSet::standard() {
    static const SymbolSet set;
    return set;
}

SymbolSet::SymbolSet() {
    const auto entries = QJsonDocument::fromJson(resource("Symbols/symbols.json")).object();
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        const auto facts = entry.value().toObject();
        const auto style = facts.value("style").toString();
        symbols_.insert(entry.key(), {.drawing = resource("Symbols/" + facts.value("file").toString() + ".svg"),
                                      .style = style == "fill"       ? Style::fill
                                               : style == "knockout" ? Style::knockout
                                                                     : Style::line,
                                      .isDirectional = facts.value("directional").toBool()});
    }
}

QStringList SymbolSet::names() const {
    auto names = symbols_.keys();
    names.sort();
    return names;
}

QImage SymbolSet::image(const QString& name, const QColor& color, QSize pixels) const {
    const auto symbol = symbols_.constFind(name);
    if (symbol == symbols_.cend() || pixels.isEmpty())
        return {};
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto [opening, shapes] = shapesOf(symbol->drawing);
    switch (symbol->style) {
    case Style::line: draw(painter, assembled(opening, shapes), color, pixels); break;
    case Style::fill: draw(painter, assembled(filled(opening), shapes), color, pixels); break;
    case Style::knockout:
        draw(painter, assembled(filled(opening), shapes.mid(0, 1)), color, pixels);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        draw(painter, assembled(opening, shapes.mid(1)), color, pixels);
        break;
    }
    if (color.alpha() < 255) {
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.fillRect(image.rect(), QColor(0, 0, 0, color.alpha()));
    }
    return image;
}

} // namespace kestrio
