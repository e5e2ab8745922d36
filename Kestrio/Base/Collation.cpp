#include "Kestrio/Base/Collation.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <utility>

namespace kestrio {
namespace {

icu::StringPiece piece(std::string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

/// Null when ICU has no rules for the locale, or none at all.
std::unique_ptr<icu::Collator> rulesOf(const icu::Locale& locale) {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, error));
    if (U_FAILURE(error))
        return nullptr;
    collator->setStrength(icu::Collator::SECONDARY); // accents count, case does not
    return collator;
}

} // namespace

struct Collation::Rules {
    std::unique_ptr<icu::Collator> collator; // null when ICU has no data
};

Collation::Collation(const std::string& locale) {
    auto collator = locale.empty() ? nullptr : rulesOf(icu::Locale::createCanonical(locale.c_str()));
    if (!collator)
        collator = rulesOf(icu::Locale::getRoot());
    rules_ = std::make_unique<const Rules>(Rules{std::move(collator)});
}

Collation::~Collation() = default;

bool Collation::isBefore(std::string_view a, std::string_view b) const {
    if (!rules_->collator)
        return a < b;
    UErrorCode error = U_ZERO_ERROR;
    return rules_->collator->compareUTF8(piece(a), piece(b), error) == UCOL_LESS;
}

} // namespace kestrio
