#include "Kestrio/Views/Values/Shown.h"

#include "Kestrio/Shell/HostWords.h"

namespace kestrio {

QString shown(std::string_view text) {
    return QString::fromStdString(hostWords(text));
}

QString plain(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString colorName(SystemColor color) {
    switch (color) {
    case SystemColor::blue: return QStringLiteral("blue");
    case SystemColor::teal: return QStringLiteral("teal");
    case SystemColor::purple: return QStringLiteral("purple");
    case SystemColor::orange: return QStringLiteral("orange");
    case SystemColor::red: return QStringLiteral("red");
    case SystemColor::brown: return QStringLiteral("brown");
    case SystemColor::gray: break;
    }
    return QStringLiteral("gray");
}

} // namespace kestrio
