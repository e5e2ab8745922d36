#include "Kestrio/Base/Initial.h"

#include "Kestrio/Base/Text.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace kestrio::text {

std::string initial(std::string_view text) {
    while (const auto scalar = firstScalar(text)) {
        if (u_isalnum(static_cast<UChar32>(scalar->value))) {
            std::string upper;
            icu::UnicodeString::fromUTF8(prefix(text, 1)).toUpper(icu::Locale::getRoot()).toUTF8String(upper);
            return upper;
        }
        text.remove_prefix(scalar->length);
    }
    return {};
}

} // namespace kestrio::text
