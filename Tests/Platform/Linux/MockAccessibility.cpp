#include "Tests/Platform/Linux/MockAccessibility.h"

#include <fmt/format.h>
#include <utility>

namespace kestrio {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* root = "/org/a11y/atspi/accessible/root";

using Reference = sdbus::Struct<std::string, sdbus::ObjectPath>;
using Relation = sdbus::Struct<std::uint32_t, std::vector<Reference>>;
using Attributes = std::map<std::string, std::string>;

constexpr std::uint32_t applicationRole = 75;
constexpr std::uint32_t frameRole = 23;
constexpr std::uint32_t buttonRole = 43;
constexpr std::uint32_t tabListRole = 38;
constexpr std::uint32_t tabRole = 37;
constexpr std::uint32_t panelRole = 39;
constexpr std::uint32_t paneRole = 49;
constexpr std::uint32_t innerRole = 28;
constexpr std::uint32_t documentRole = 95;

std::string path(const char* kind, int frame, int number = 0) {
    return fmt::format("/org/a11y/atspi/accessible/{}/{}/{}", kind, frame, number);
}

} // namespace

MockAccessibilityLauncher::MockAccessibilityLauncher(const std::string& sessionBus, std::string address, bool isEnabled)
    : bus_(sessionBus) {
    object_ = sdbus::createObject(bus_.connection(), "/org/a11y/bus");
    object_->registerMethod("GetAddress").onInterface("org.a11y.Bus").implementedAs([this, address] {
        ++starts_;
        return address;
    });
    object_->registerProperty("IsEnabled").onInterface("org.a11y.Status").withGetter([isEnabled] { return isEnabled; });
    object_->finishRegistration();
    bus_.serve("org.a11y.Bus");
}

MockAccessibilityLauncher::~MockAccessibilityLauncher() {
    bus_.stop();
    object_.reset();
}

MockAccessibilityRegistry::MockAccessibilityRegistry(const std::string& bus) : bus_(bus) {
    object_ = sdbus::createObject(bus_.connection(), root);
    object_->registerMethod("GetChildren").onInterface(accessible).implementedAs([this] {
        const std::lock_guard guard(mutex_);
        std::vector<Reference> children;
        for (const auto& owner : owners_)
            children.emplace_back(owner, sdbus::ObjectPath(root));
        return children;
    });
    object_->finishRegistration();
    bus_.serve("org.a11y.atspi.Registry");
}

MockAccessibilityRegistry::~MockAccessibilityRegistry() {
    bus_.stop();
    object_.reset();
}

void MockAccessibilityRegistry::list(std::vector<std::string> owners) {
    const std::lock_guard guard(mutex_);
    owners_ = std::move(owners);
}

MockBrowser::MockBrowser(const std::string& bus, std::string owner, Script script)
    : owner_(std::move(owner)), script_(std::move(script)), bus_(bus) {
    serveRoot();
    for (int frame = 0; frame < mostFrames; ++frame) {
        serveFrame(frame);
        serveControls(frame);
        servePanes(frame);
    }
    for (const auto& each : objects_)
        each->finishRegistration();
    bus_.serve(owner_);
}

MockBrowser::~MockBrowser() {
    bus_.stop();
    objects_.clear();
}

void MockBrowser::change(const std::function<void(Script&)>& edit) {
    const std::lock_guard guard(mutex_);
    edit(script_);
}

sdbus::IObject& MockBrowser::object(const std::string& objectPath) {
    return *objects_.emplace_back(sdbus::createObject(bus_.connection(), objectPath));
}

void MockBrowser::method(sdbus::IObject& target, const char* interface, const char* name, const char* input,
                         const char* output, std::function<void(sdbus::MethodReply&)> answer) {
    target.registerMethod(interface, name, input, output, [this, answer = std::move(answer)](sdbus::MethodCall call) {
        auto reply = call.createReply();
        {
            const std::lock_guard guard(mutex_);
            answer(reply);
        }
        reply.send();
    });
}

void MockBrowser::methodOf(int frame, sdbus::IObject& target, const char* interface, const char* name,
                           const char* input, const char* output, Answer answer) {
    method(target, interface, name, input, output,
           [this, frame, answer = std::move(answer)](sdbus::MethodReply& reply) {
               const auto index = static_cast<std::size_t>(frame);
               if (index >= script_.frames.size() || script_.frames[index].isGone)
                   throw sdbus::Error("org.freedesktop.DBus.Error.UnknownObject", "gone");
               answer(reply, script_.frames[index]);
           });
}

void MockBrowser::nameOf(sdbus::IObject& target, std::function<std::string()> name) {
    target.registerProperty(accessible, "Name", "s", [this, name = std::move(name)](sdbus::PropertyGetReply& reply) {
        const std::lock_guard guard(mutex_);
        reply << name();
    });
}

void MockBrowser::serveRoot() {
    auto& target = object(root);
    nameOf(target, [this] { return script_.name; });
    target.registerProperty("org.a11y.atspi.Application", "ToolkitName", "s", [this](sdbus::PropertyGetReply& reply) {
        const std::lock_guard guard(mutex_);
        reply << script_.toolkit;
    });
    method(target, accessible, "GetRole", "", "u", [](sdbus::MethodReply& reply) { reply << applicationRole; });
    const auto* childrenType = script_.malformed == Malformed::children ? "s" : "a(so)";
    method(target, accessible, "GetChildren", "", childrenType, [this](sdbus::MethodReply& reply) {
        if (script_.malformed == Malformed::children) {
            reply << std::string("no list at all");
            return;
        }
        std::vector<Reference> children;
        const auto count = script_.malformed == Malformed::endless ? 20'000 : script_.frames.size();
        for (std::size_t frame = 0; frame < count; ++frame)
            children.emplace_back(owner_, sdbus::ObjectPath(path("frame", static_cast<int>(frame))));
        reply << children;
    });
}

void MockBrowser::serveFrame(int number) {
    auto& target = object(path("frame", number));
    nameOf(target, [this, number]() -> std::string {
        const auto index = static_cast<std::size_t>(number);
        if (script_.malformed == Malformed::name)
            return "\x01\x1F\x1D" + std::string(100'000, 'x');
        return index < script_.frames.size() ? script_.frames[index].name : "";
    });
    methodOf(number, target, accessible, "GetRole", "", "u",
             [](sdbus::MethodReply& reply, Frame&) { reply << frameRole; });
    methodOf(number, target, accessible, "GetState", "", "au", [this](sdbus::MethodReply& reply, Frame& frame) {
        if (script_.malformed == Malformed::states)
            reply << std::vector<std::uint32_t>();
        else
            reply << std::vector<std::uint32_t>{frame.isActive ? 2U : 0U, 0U};
    });
    methodOf(number, target, accessible, "GetChildren", "", "a(so)",
             [this, number](sdbus::MethodReply& reply, Frame& frame) {
                 std::vector<Reference> children{{owner_, sdbus::ObjectPath(path("document", number))},
                                                 {owner_, sdbus::ObjectPath(path("tabs", number))}};
                 if (frame.isRestored)
                     children.front() = {owner_, sdbus::ObjectPath(path("panel", number))};
                 if (frame.hasPrivateButton)
                     children.emplace_back(owner_, sdbus::ObjectPath(path("button", number)));
                 reply << children;
             });
    methodOf(number, target, "org.a11y.atspi.Component", "GetExtents", "u", "(iiii)",
             [](sdbus::MethodReply& reply, Frame& frame) {
                 const auto& [x, y, width, height] = frame.extents;
                 reply << sdbus::make_struct(x, y, width, height);
             });
    const auto* relationsType = script_.malformed == Malformed::relations ? "a{ss}" : "a(ua(so))";
    methodOf(number, target, accessible, "GetRelationSet", "", relationsType,
             [this, number](sdbus::MethodReply& reply, Frame& frame) {
                 ++documentQuestions_;
                 if (script_.malformed == Malformed::relations) {
                     reply << std::map<std::string, std::string>{{"13", "document"}};
                     return;
                 }
                 std::vector<Relation> relations{{7, {{owner_, sdbus::ObjectPath(root)}}}};
                 if (frame.unprimed > 0)
                     --frame.unprimed;
                 else if (frame.hasDocument && !frame.isRestored)
                     relations.emplace_back(
                         13, std::vector<Reference>{{owner_, sdbus::ObjectPath(path("document", number))}});
                 reply << relations;
             });
}

void MockBrowser::serveControls(int number) {
    auto& document = object(path("document", number));
    nameOf(document, [this, number] {
        const auto index = static_cast<std::size_t>(number);
        return index < script_.frames.size() ? script_.frames[index].title : "";
    });
    methodOf(number, document, accessible, "GetRole", "", "u",
             [](sdbus::MethodReply& reply, Frame&) { reply << documentRole; });
    const auto* attributesType = script_.malformed == Malformed::document ? "as" : "a{ss}";
    methodOf(number, document, "org.a11y.atspi.Document", "GetAttributes", "", attributesType,
             [this](sdbus::MethodReply& reply, Frame& frame) {
                 if (script_.malformed == Malformed::document) {
                     reply << std::vector<std::string>{"URI", frame.address};
                     return;
                 }
                 const bool isLate = frame.lateAddress > 0;
                 frame.lateAddress -= isLate ? 1 : 0;
                 reply << Attributes{{script_.toolkit == "Gecko" ? "DocURL" : "URI", isLate ? "" : frame.address},
                                     {"MimeType", "text/html"}};
             });

    auto& button = object(path("button", number));
    methodOf(number, button, accessible, "GetRole", "", "u",
             [](sdbus::MethodReply& reply, Frame&) { reply << buttonRole; });
    methodOf(number, button, accessible, "GetAttributes", "", "a{ss}", [](sdbus::MethodReply& reply, Frame&) {
        reply << Attributes{{"id", "reset-pbm-toolbar-button"}};
    });

    auto& tabs = object(path("tabs", number));
    methodOf(number, tabs, accessible, "GetRole", "", "u",
             [](sdbus::MethodReply& reply, Frame&) { reply << tabListRole; });
    methodOf(number, tabs, accessible, "GetChildren", "", "a(so)",
             [this, number](sdbus::MethodReply& reply, Frame& frame) {
                 std::vector<Reference> children;
                 for (std::size_t tab = 0; tab < frame.tabs.size(); ++tab)
                     children.emplace_back(owner_, sdbus::ObjectPath(path("tab", number, static_cast<int>(tab))));
                 reply << children;
             });
    for (int tab = 0; tab < mostTabs; ++tab) {
        const auto at = static_cast<std::size_t>(tab);
        auto& target = object(path("tab", number, tab));
        nameOf(target,
               [this, number, at] { return script_.frames.at(static_cast<std::size_t>(number)).tabs.at(at).label; });
        methodOf(number, target, accessible, "GetRole", "", "u",
                 [](sdbus::MethodReply& reply, Frame&) { reply << tabRole; });
        methodOf(number, target, accessible, "GetState", "", "au", [at](sdbus::MethodReply& reply, Frame& frame) {
            reply << std::vector<std::uint32_t>{frame.tabs.at(at).isSelected ? 1U << 23 : 0U, 0U};
        });
    }
}

/// Of two tabs the second shows; the document of the first is not there at all.
void MockBrowser::servePanes(int number) {
    const auto child = [&](const std::string& of, const char* kind, std::uint32_t role, int count) {
        auto& target = object(of);
        methodOf(number, target, accessible, "GetRole", "", "u",
                 [role](sdbus::MethodReply& reply, Frame&) { reply << role; });
        methodOf(number, target, accessible, "GetChildren", "", "a(so)",
                 [this, number, kind, count](sdbus::MethodReply& reply, Frame&) {
                     std::vector<Reference> children;
                     for (int each = 0; each < count; ++each)
                         children.emplace_back(owner_, sdbus::ObjectPath(path(kind, number, each)));
                     reply << children;
                 });
        return &target;
    };
    child(path("panel", number), "pane", panelRole, 2);
    for (const bool isShown : {false, true}) {
        auto* pane = child(path("pane", number, isShown), isShown ? "inner" : "nothing", paneRole, 1);
        methodOf(number, *pane, accessible, "GetState", "", "au", [isShown](sdbus::MethodReply& reply, Frame&) {
            reply << std::vector<std::uint32_t>{isShown ? 1U << 25 : 0U, 0U};
        });
    }
    child(path("inner", number), "document", innerRole, 1);
}

} // namespace kestrio
