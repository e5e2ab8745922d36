#include "Kestrio/Platform/Linux/ApplicationIdentity.h"

#include <algorithm>

namespace kestrio {
namespace {

constexpr std::size_t mostKnown = 512;

std::string lowered(std::string_view text) {
    std::string result(text);
    for (auto& c : result)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return result;
}

bool sameLetters(std::string_view a, std::string_view b) {
    return a.size() == b.size() && lowered(a) == lowered(b);
}

bool isTerminal(const DesktopEntry& entry) {
    return (";" + entry.categories + ";").find(";TerminalEmulator;") != std::string::npos;
}

/// As opposed to helpers, and to commands that only a terminal shows.
bool isStartedByPeople(const DesktopEntry& entry) {
    return entry.isShown && !entry.runsInTerminal;
}

std::optional<std::string> nonEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

class Search {
public:
    Search(const WindowOwner& owner, const ProcessEvidence& evidence, DesktopEntries& entries,
           const IdentityCatalogue& catalogue)
        : owner_(owner), evidence_(evidence), entries_(entries), catalogue_(catalogue) {}

    ApplicationID result() {
        if (auto found = byOrigin())
            return *found;
        if (const auto* entry = byClass())
            return of(*entry);
        if (auto found = byKnownClass())
            return *found;
        if (auto found = byProgram())
            return *found;
        return byBareClass();
    }

    std::optional<ApplicationID> resultWithoutWindow() {
        const auto* unit = evidence_.unitApplication ? entries_.byID(*evidence_.unitApplication) : nullptr;
        const bool isOfUnit = evidence_.sandboxApplication || (unit && runsProgramOf(*unit));
        if (!isOfUnit)
            for (const auto& name : evidence_.programNames)
                if (const auto* entry = entries_.byProgram(name); entry && isStartedByPeople(*entry))
                    return of(*entry);
        if (auto found = byOrigin())
            return found;
        return byProgram();
    }

private:
    /// By what the desktop started, from which everything below has it.
    std::optional<ApplicationID> byOrigin() {
        if (auto found = byUnit())
            return found;
        if (evidence_.sandboxApplication)
            return ofDesktopID(*evidence_.sandboxApplication);
        if (evidence_.desktopFile)
            if (const auto* entry = entries_.byFile(*evidence_.desktopFile); entry && isCredible(*entry))
                return of(*entry);
        return std::nullopt;
    }

    std::optional<ApplicationID> byUnit() {
        if (!evidence_.unitApplication)
            return std::nullopt;
        const auto* entry = entries_.byID(*evidence_.unitApplication);
        if (entry)
            return isCredible(*entry) ? std::optional(of(*entry)) : std::nullopt;
        // A unit of something that is not installed for this person; the names that the catalogue knows are certain.
        if (catalogue_.identifier(*evidence_.unitApplication) || !byClass())
            return ofDesktopID(*evidence_.unitApplication);
        return std::nullopt;
    }

    /// Whether inherited evidence for the entry stands up to the window itself.
    bool isCredible(const DesktopEntry& entry) {
        if (isTerminal(entry) && !hasClassOf(entry))
            return false;
        const auto* other = byClass();
        return !other || other->id == entry.id || !runsProgramOf(*other) || runsProgramOf(entry);
    }

    bool hasClassOf(const DesktopEntry& entry) {
        if (owner_.className.empty() && owner_.instanceName.empty())
            return true; // nothing speaks against it
        const auto dot = entry.id.rfind('.');
        const auto program = entry.program.substr(entry.program.rfind('/') + 1);
        for (const auto* name : {&owner_.className, &owner_.instanceName})
            if (!name->empty() &&
                (sameLetters(*name, entry.windowClass) || sameLetters(*name, entry.id) || sameLetters(*name, program) ||
                 (dot != std::string::npos && sameLetters(*name, entry.id.substr(dot + 1)))))
                return true;
        return false;
    }

    bool runsProgramOf(const DesktopEntry& entry) const {
        const auto program = entry.program.substr(entry.program.rfind('/') + 1);
        const auto& names = evidence_.programNames;
        return !program.empty() && std::find(names.begin(), names.end(), program) != names.end();
    }

    const DesktopEntry* byClass() {
        // The instance names the window more closely: of a browser's own applications, say.
        for (const auto* name : {&owner_.instanceName, &owner_.className})
            if (!name->empty())
                if (const auto* entry = entries_.byWindowClass(*name))
                    return entry;
        return nullptr;
    }

    std::optional<ApplicationID> byKnownClass() {
        for (const auto* name : {&owner_.className, &owner_.instanceName})
            if (!name->empty())
                if (const auto identifier = catalogue_.identifier(*name))
                    return named(std::string(*identifier));
        return std::nullopt;
    }

    std::optional<ApplicationID> byProgram() {
        for (const auto& name : evidence_.programNames) {
            if (const auto* entry = entries_.byProgram(name))
                return of(*entry);
            if (const auto identifier = catalogue_.identifier(name))
                return named(std::string(*identifier));
        }
        return std::nullopt;
    }

    ApplicationID byBareClass() {
        const auto& name = owner_.className.empty() ? owner_.instanceName : owner_.className;
        if (!name.empty())
            return {catalogue_.identifierOfDesktopID(lowered(name)), name};
        if (evidence_.programNames.empty())
            return {};
        return {lowered(evidence_.programNames.front()), evidence_.programNames.front()};
    }

    ApplicationID of(const DesktopEntry& entry) {
        return {catalogue_.identifierOfDesktopID(entry.id), nonEmpty(entry.name.empty() ? entry.id : entry.name)};
    }

    ApplicationID ofDesktopID(const std::string& id) {
        if (const auto* entry = entries_.byID(id))
            return of(*entry);
        return named(catalogue_.identifierOfDesktopID(id));
    }

    /// An application that no desktop file here describes: its class is the best name there is.
    ApplicationID named(std::string identifier) {
        const auto& name = owner_.className.empty() ? owner_.instanceName : owner_.className;
        return {std::move(identifier), nonEmpty(name)};
    }

    const WindowOwner& owner_;
    const ProcessEvidence& evidence_;
    DesktopEntries& entries_;
    const IdentityCatalogue& catalogue_;
};

} // namespace

ApplicationID identify(const WindowOwner& owner, const ProcessEvidence& evidence, DesktopEntries& entries,
                       const IdentityCatalogue& catalogue) {
    return Search(owner, evidence, entries, catalogue).result();
}

std::optional<ApplicationID> applicationOf(const ProcessEvidence& evidence, DesktopEntries& entries,
                                           const IdentityCatalogue& catalogue) {
    const WindowOwner nobody{};
    return Search(nobody, evidence, entries, catalogue).resultWithoutWindow();
}

ApplicationIdentity::ApplicationIdentity(DesktopEntries& entries, const IdentityCatalogue& catalogue,
                                         std::filesystem::path processes)
    : entries_(entries), catalogue_(catalogue), processes_(std::move(processes)) {}

ApplicationID ApplicationIdentity::identify(const WindowOwner& owner) {
    if (const auto version = entries_.refresh(); version != knownVersion_ || known_.size() >= mostKnown) {
        known_.clear();
        knownVersion_ = version;
    }
    const auto start = owner.process ? readStartTicks(processes_, *owner.process) : std::nullopt;
    Key key{start ? *owner.process : 0, start.value_or(0), owner.className, owner.instanceName};
    if (const auto found = known_.find(key); found != known_.end())
        return found->second;
    const auto evidence = start ? readProcessEvidence(processes_, *owner.process) : ProcessEvidence{};
    auto result = kestrio::identify(owner, evidence, entries_, catalogue_);
    known_.emplace(std::move(key), result);
    return result;
}

std::optional<ApplicationID> ApplicationIdentity::applicationOf(pid_t process) {
    entries_.refresh();
    auto found = kestrio::applicationOf(readProcessEvidence(processes_, process), entries_, catalogue_);
    if (found && found->bundleIdentifier && !found->localizedName)
        found->localizedName = name(*found->bundleIdentifier);
    return found;
}

bool ApplicationIdentity::isApplicationProgram(std::string_view fileName) {
    entries_.refresh();
    const auto* entry = entries_.byProgram(fileName);
    return entry && isStartedByPeople(*entry);
}

const DesktopEntry* ApplicationIdentity::installed(std::string_view bundleIdentifier) {
    entries_.refresh();
    const DesktopEntry* hidden = nullptr;
    for (const auto name : catalogue_.namesOf(bundleIdentifier))
        if (const auto* entry = entries_.byID(name)) {
            if (entry->isShown)
                return entry;
            hidden = entry;
        }
    if (const auto* entry = hidden ? nullptr : entries_.byID(bundleIdentifier))
        return entry;
    return hidden ? hidden : entries_.byWindowClass(bundleIdentifier);
}

std::optional<std::string> ApplicationIdentity::name(std::string_view bundleIdentifier) {
    const auto* entry = installed(bundleIdentifier);
    return entry ? nonEmpty(entry->name) : std::nullopt;
}

std::optional<std::string> ApplicationIdentity::icon(std::string_view bundleIdentifier) {
    const auto* entry = installed(bundleIdentifier);
    return entry ? nonEmpty(entry->icon) : std::nullopt;
}

std::optional<DesktopEntry> ApplicationIdentity::entry(std::string_view bundleIdentifier) {
    const auto* entry = installed(bundleIdentifier);
    return entry ? std::optional(*entry) : std::nullopt;
}

std::optional<std::string> ApplicationIdentity::categoryHint(std::string_view bundleIdentifier) {
    const auto* entry = installed(bundleIdentifier);
    return entry ? std::optional(std::string(categoryOfDesktopCategories(entry->categories))) : std::nullopt;
}

} // namespace kestrio
