// The pictures behind the symbol names that pages and panels use: which drawing stands for which name, and how it is
// drawn. Immutable once made; any thread.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QImage>

namespace kestrio {

class SymbolSet {
public:
    /// The set of this program, from its resources.
    static const SymbolSet& standard();

    bool contains(const QString& name) const { return symbols_.contains(name); }
    /// In order.
    QStringList names() const;

    /// Whether the symbol points somewhere in the reading direction and is mirrored with it.
    bool isDirectional(const QString& name) const { return symbols_.value(name).isDirectional; }

    /// The symbol in one colour on nothing, as large as fits. Null for an unknown name or an empty size.
    QImage image(const QString& name, const QColor& color, QSize pixels) const;

private:
    enum class Style {
        line,
        fill,     // closed shapes are filled
        knockout, // the frame is filled, and the rest is cut out of it
    };
    struct Symbol {
        QByteArray drawing; // SVG
        Style style = Style::line;
        bool isDirectional = false;
    };

    SymbolSet();

    QHash<QString, Symbol> symbols_;
};

} // namespace kestrio
