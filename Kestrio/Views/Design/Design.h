// Brings the design system into a QML engine: the fonts, the pictures of symbols and applications, the appearance. Once
// per engine, on the main thread, before anything of `Kestrio.Design` is loaded.
#pragma once

#include "Kestrio/Views/Design/Appearance.h"
#include "Kestrio/Views/Design/IconCache.h"

namespace kestrio {

/// The family that the fonts of the program have.
inline constexpr auto fontFamily = "Inter Tabular";

/// The program's fonts, for the whole process. Where one cannot be read the desktop's own stands in.
void installFonts();

/// The appearance is the engine's; set on it what the desktop asks for and what the person chose.
Appearance& installDesign(QQmlEngine& engine, IconFile iconFile);

} // namespace kestrio
