#include "Kestrio/Platform/Linux/X11Selections.h"

#include "Kestrio/Platform/Linux/X11Properties.h"

#include <algorithm>
#include <string_view>

namespace kestrio {
namespace {

using Operation = X11Connection::Operation;

constexpr std::string_view clipboardName = "CLIPBOARD";

/// 0 while nobody ever copied anything.
xcb_atom_t clipboard(Operation& operation) {
    const auto answer = operation.reply<xcb_intern_atom_reply_t>(
        xcb_intern_atom(operation.xcb(), 1, clipboardName.size(), clipboardName.data()));
    return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

std::vector<pid_t> selectionHolders(X11Connection& connection) {
    std::vector<pid_t> holders;
    Operation operation(connection);
    if (!operation || !operation.server().hasClientProcesses)
        return holders;
    for (const auto selection : {xcb_atom_t{XCB_ATOM_PRIMARY}, clipboard(operation)}) {
        if (!operation || selection == XCB_ATOM_NONE)
            continue;
        const auto owner =
            operation.reply<xcb_get_selection_owner_reply_t>(xcb_get_selection_owner(operation.xcb(), selection));
        if (!operation || !owner || owner->owner == XCB_WINDOW_NONE)
            continue;
        const auto client = x11::clientProcess(
            operation.reply<xcb_res_query_client_ids_reply_t>(x11::askForClientProcess(operation.xcb(), owner->owner))
                .get());
        if (client && std::ranges::find(holders, *client) == holders.end())
            holders.push_back(*client);
    }
    return holders;
}

} // namespace kestrio
