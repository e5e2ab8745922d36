#include "Kestrio/Activity/BrowserInspector.h"

#include "Kestrio/Activity/BrowserTexts.h"

namespace kestrio {
namespace {

/// Whether the browser's name ends the title here, or only a profile's name follows.
bool endsName(std::string_view rest) {
    return rest.empty() || rest.starts_with(" - ") || rest.starts_with(" — ");
}

} // namespace

const std::map<std::string, BrowserInspector::Engine, std::less<>>& BrowserInspector::scriptable() {
    static const std::map<std::string, Engine, std::less<>> table{
        {"com.google.Chrome", Engine::chromium},
        {"com.google.Chrome.beta", Engine::chromium},
        {"com.google.Chrome.dev", Engine::chromium},
        {"com.google.Chrome.canary", Engine::chromium},
        {"org.chromium.Chromium", Engine::chromium},
        {"com.brave.Browser", Engine::chromium},
        {"com.brave.Browser.beta", Engine::chromium},
        {"com.microsoft.edgemac", Engine::chromium},
        {"com.microsoft.edgemac.Beta", Engine::chromium},
        {"com.vivaldi.Vivaldi", Engine::chromium},
        {"com.operasoftware.Opera", Engine::chromium},
        {"company.thebrowser.Browser", Engine::arc},
        {"com.apple.Safari", Engine::safari},
        {"com.apple.SafariTechnologyPreview", Engine::safari},
    };
    return table;
}

const std::set<std::string, std::less<>>& BrowserInspector::titleOnly() {
    static const std::set<std::string, std::less<>> table{
        "org.mozilla.firefox", "org.mozilla.firefoxdeveloperedition",
        "org.mozilla.nightly", "app.zen-browser.zen",
        "com.kagi.kagimacOS",  "net.waterfox.waterfox",
        "com.openai.atlas",
    };
    return table;
}

bool BrowserInspector::isBrowser(std::string_view bundleID) {
    return scriptable().contains(bundleID) || titleOnly().contains(bundleID);
}

BrowserInspector::BrowserInspector(BrowserReader& reader, const Clock& clock,
                                   std::set<std::string, std::less<>> readableHere)
    : reader_(reader), clock_(clock), readableHere_(std::move(readableHere)) {}

bool BrowserInspector::isReadable(std::string_view bundleID) const {
    return scriptable().contains(bundleID) || readableHere_.contains(bundleID);
}

std::optional<BrowserTab> BrowserInspector::activeTab(const std::string& bundleID) {
    const auto text = ask(&BrowserReader::frontTab, bundleID);
    return text ? BrowserTexts::frontTab(*text) : std::nullopt;
}

std::optional<std::vector<BrowserWindow>> BrowserInspector::windows(const std::string& bundleID) {
    const auto text = ask(&BrowserReader::windows, bundleID);
    return text ? std::optional(BrowserTexts::windows(*text)) : std::nullopt;
}

std::optional<std::string> BrowserInspector::ask(Question question, const std::string& bundleID) {
    if (!isReadable(bundleID))
        return std::nullopt;
    const auto held = retryAfter_.find(bundleID);
    if (held != retryAfter_.end() && held->second > clock_.uptime())
        return std::nullopt;
    auto answer = (reader_.*question)(bundleID);
    if (std::holds_alternative<BrowserRefusal>(answer)) {
        retryAfter_[bundleID] = clock_.uptime() + retryInterval;
        return std::nullopt;
    }
    auto text = std::get<std::string>(std::move(answer));
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::string BrowserInspector::stripBrowserName(std::string_view title, std::string_view appName) {
    const std::string_view names[] = {
        appName,
        "Google Chrome",
        "Mozilla Firefox",
        "Firefox",
        "Brave",
        "Microsoft Edge",
        "Microsoft\u200B Edge", // as it signs itself, with a zero-width space
        "Zen Browser",
        "Zen",
        "Chromium",
        "Vivaldi",
        "Opera",
        "Orion",
        "Safari",
    };
    for (const std::string_view separator : {" - ", " — ", " – "})
        for (const auto name : names) {
            const auto signature = std::string(separator).append(name);
            const auto at = title.rfind(signature);
            if (at != std::string_view::npos && endsName(title.substr(at + signature.size())))
                return std::string(title.substr(0, at));
        }
    return std::string(title);
}

} // namespace kestrio
