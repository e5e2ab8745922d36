#include "Kestrio/Platform/Linux/TrayMenu.h"

#include <algorithm>
#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace kestrio {
namespace {

constexpr auto interface = "com.canonical.dbusmenu";
constexpr std::int32_t root = 0;

using Names = std::vector<std::string>;
using Properties = std::map<std::string, sdbus::Variant>;
/// A number, its properties, and variants of the same for what is below it.
using Layout = sdbus::Struct<std::int32_t, Properties, std::vector<sdbus::Variant>>;

/// An underscore marks the letter that chooses the entry by keyboard; two stand for one.
std::string label(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result += c;
        if (c == '_')
            result += '_';
    }
    return result;
}

/// Null stands for the menu as a whole.
Properties propertiesOf(const TrayMenuEntry* entry) {
    using Kind = TrayMenuEntry::Kind;
    const std::pair opensMore("children-display", sdbus::Variant(std::string("submenu")));
    if (!entry)
        return {opensMore};
    if (entry->kind == Kind::separator)
        return {{"type", sdbus::Variant(std::string("separator"))}};
    Properties properties{{"label", sdbus::Variant(label(entry->text))}};
    if (entry->kind == Kind::words)
        properties.emplace("enabled", sdbus::Variant(false));
    if (entry->kind == Kind::submenu)
        properties.insert(opensMore);
    return properties;
}

/// Those that were asked for; all when none were.
Properties selected(const Properties& properties, const Names& names) {
    Properties result;
    for (const auto& [name, value] : properties)
        if (names.empty() || std::ranges::find(names, name) != names.end())
            result.emplace(name, value);
    return result;
}

/// Down to so many levels below the number; all of them when negative.
template <class NodeAt>
Layout layout(const NodeAt& nodeAt, std::int32_t number, std::int32_t depth, const Names& names) {
    const auto& node = nodeAt(number);
    std::vector<sdbus::Variant> below;
    if (depth != 0)
        for (const auto child : node.below)
            below.emplace_back(layout(nodeAt, child, depth - 1, names));
    return sdbus::make_struct(number, selected(propertiesOf(node.entry), names), below);
}

} // namespace

TrayMenu::TrayMenu(sdbus::IConnection& connection, std::vector<TrayMenuEntry> entries, Receiver receiver)
    : receiver_(std::move(receiver)) {
    set(std::move(entries));
    registerObject(connection);
}

TrayMenu::~TrayMenu() = default;

void TrayMenu::set(std::vector<TrayMenuEntry> entries) {
    if (revision_ > 0 && entries == entries_)
        return;
    entries_ = std::move(entries);
    ++revision_;
    nodes_.clear();
    nodes_.emplace(root, Node());
    number(entries_, root, "");
}

void TrayMenu::tell() {
    object_->emitSignal("LayoutUpdated").onInterface(interface).withArguments(revision_, root);
}

void TrayMenu::number(const std::vector<TrayMenuEntry>& entries, Number parent, const std::string& place) {
    int index = 0;
    for (const auto& entry : entries) {
        const bool isChoice = entry.kind == TrayMenuEntry::Kind::choice;
        const auto here = place + "/" + std::to_string(index++);
        const auto next = static_cast<Number>(numbers_.size() + 1);
        const auto given = numbers_.try_emplace(isChoice ? "=" + entry.id : here, next).first->second;
        nodes_[given] = {&entry};
        nodes_[parent].below.push_back(given);
        number(entry.entries, given, here);
    }
}

const TrayMenu::Node& TrayMenu::node(Number number) const {
    const auto found = nodes_.find(number);
    if (found == nodes_.end())
        throw sdbus::Error("org.freedesktop.DBus.Error.InvalidArgs", "there is no such entry");
    return found->second;
}

void TrayMenu::registerObject(sdbus::IConnection& connection) {
    using Groups = std::vector<sdbus::Struct<Number, Properties>>;
    using Event = sdbus::Struct<Number, std::string, sdbus::Variant, std::uint32_t>;
    object_ = sdbus::createObject(connection, path);
    object_->registerMethod("GetLayout")
        .onInterface(interface)
        .implementedAs([this](Number parent, std::int32_t depth, const Names& names) {
            node(parent);
            const auto at = [this](Number which) -> const Node& { return nodes_.at(which); };
            return std::tuple(revision_, layout(at, parent, depth, names));
        });
    object_->registerMethod("GetGroupProperties")
        .onInterface(interface)
        .implementedAs([this](const std::vector<Number>& numbers, const Names& names) {
            Groups groups;
            for (const auto& [each, known] : nodes_)
                if (numbers.empty() || std::ranges::find(numbers, each) != numbers.end())
                    groups.emplace_back(each, selected(propertiesOf(known.entry), names));
            return groups;
        });
    object_->registerMethod("GetProperty")
        .onInterface(interface)
        .implementedAs([this](Number of, const std::string& name) {
            const auto properties = propertiesOf(node(of).entry);
            const auto found = properties.find(name);
            if (found == properties.end())
                throw sdbus::Error("org.freedesktop.DBus.Error.InvalidArgs", "it has no such property");
            return found->second;
        });
    object_->registerMethod("Event").onInterface(interface).implementedAs(
        [this](Number on, const std::string& event, const sdbus::Variant&, std::uint32_t) { happened(on, event); });
    object_->registerMethod("EventGroup")
        .onInterface(interface)
        .implementedAs([this](const std::vector<Event>& events) {
            std::vector<Number> unknown;
            for (const auto& event : events)
                if (nodes_.contains(event.get<0>()))
                    happened(event.get<0>(), event.get<1>());
                else
                    unknown.push_back(event.get<0>());
            return unknown;
        });
    object_->registerMethod("AboutToShow").onInterface(interface).implementedAs([this](Number shown) {
        return isOpening(shown);
    });
    object_->registerMethod("AboutToShowGroup")
        .onInterface(interface)
        .implementedAs([this](const std::vector<Number>& numbers) {
            std::vector<Number> changed;
            std::vector<Number> unknown;
            for (const auto each : numbers)
                if (!nodes_.contains(each))
                    unknown.push_back(each);
                else if (isOpening(each))
                    changed.push_back(each);
            return std::tuple(changed, unknown);
        });
    object_->registerProperty("Version").onInterface(interface).withGetter([] { return std::uint32_t{3}; });
    object_->registerProperty("TextDirection").onInterface(interface).withGetter([] { return std::string("ltr"); });
    object_->registerProperty("Status").onInterface(interface).withGetter([] { return std::string("normal"); });
    object_->registerProperty("IconThemePath").onInterface(interface).withGetter([] { return Names(); });
    object_->registerSignal("LayoutUpdated").onInterface(interface).withParameters<std::uint32_t, std::int32_t>();
    object_->registerSignal("ItemsPropertiesUpdated")
        .onInterface(interface)
        .withParameters<Groups, std::vector<sdbus::Struct<Number, Names>>>();
    object_->registerSignal("ItemActivationRequested").onInterface(interface).withParameters<Number, std::uint32_t>();
    object_->finishRegistration();
}

/// Whether the menu below that entry is another than before it was asked for.
bool TrayMenu::isOpening(Number number) {
    node(number);
    if (number != root)
        return false;
    const auto before = revision_;
    receiver_.opening();
    return revision_ != before;
}

void TrayMenu::happened(Number number, const std::string& event) {
    const auto* entry = node(number).entry;
    if (event == "clicked" && entry && entry->kind == TrayMenuEntry::Kind::choice)
        receiver_.chosen(entry->id);
}

} // namespace kestrio
