// How single values cross into the views: texts, absent values, lists, colours by name. Pure functions.
#pragma once

#include "Kestrio/Model/Models.h"

#include <QString>
#include <QVariant>
#include <concepts>
#include <optional>
#include <string_view>

namespace kestrio {

/// Words of this program, as this host says them.
QString shown(std::string_view text);

/// What was recorded, typed or named elsewhere: nobody else's words are changed.
QString plain(std::string_view text);

/// The name that `Theme` knows the colour by, as in "teal".
QString colorName(SystemColor color);

/// A map of named fields; an absent one is left out, and so reads as `undefined`.
class Fields {
public:
    Fields& add(const char* name, const QVariant& value) {
        map_.insert(QLatin1StringView(name), value);
        return *this;
    }
    Fields& words(const char* name, std::string_view text) { return add(name, shown(text)); }
    template <std::same_as<std::optional<std::string>> Text>
    Fields& words(const char* name, const Text& text) {
        return text ? add(name, shown(*text)) : *this;
    }
    Fields& text(const char* name, std::string_view text) { return add(name, plain(text)); }
    template <std::same_as<std::optional<std::string>> Text>
    Fields& text(const char* name, const Text& text) {
        return text ? add(name, plain(*text)) : *this;
    }

    operator QVariant() const { return map_; }
    operator QVariantMap() const { return map_; }

private:
    QVariantMap map_;
};

} // namespace kestrio
