#include "Kestrio/Base/Mistake.h"

#include <cstdio>
#include <cstdlib>

namespace kestrio {

void programmersMistake(std::string_view what) {
    std::fprintf(stderr, "Kestrio: programmer's mistake: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

} // namespace kestrio
