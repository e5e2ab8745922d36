#include "Kestrio/Platform/Linux/X11SaverSuspensions.h"

#include "Kestrio/Platform/Linux/X11Properties.h"

#include <span>
#include <xcb/res.h>

namespace kestrio {
namespace {

using Operation = X11Connection::Operation;

/// A client is named by the first of the numbers that it gives to what it makes.
std::vector<std::uint32_t> clients(Operation& operation) {
    const auto answer = operation.reply<xcb_res_query_clients_reply_t>(xcb_res_query_clients(operation.xcb()));
    std::vector<std::uint32_t> result;
    if (!answer)
        return result;
    const std::span all(xcb_res_query_clients_clients(answer.get()),
                        static_cast<std::size_t>(xcb_res_query_clients_clients_length(answer.get())));
    for (const auto& client : all)
        result.push_back(client.resource_base);
    return result;
}

bool suspends(const xcb_res_query_client_resources_reply_t* resources, xcb_atom_t suspension) {
    if (!resources)
        return false;
    const std::span types(xcb_res_query_client_resources_types(resources),
                          static_cast<std::size_t>(xcb_res_query_client_resources_types_length(resources)));
    for (const auto& type : types)
        if (type.resource_type == suspension && type.count > 0)
            return true;
    return false;
}

} // namespace

std::vector<pid_t> saverSuspendingProcesses(X11Connection& connection) {
    Operation operation(connection);
    std::vector<pid_t> processes;
    if (!operation || !operation.server().hasClientProcesses)
        return processes;
    const auto all = clients(operation);
    if (!operation)
        return processes;
    const auto suspension = operation.server().atoms.saverSuspend;
    auto* xcb = operation.xcb();
    std::vector<xcb_res_query_client_resources_cookie_t> resources;
    for (const auto client : all)
        resources.push_back(xcb_res_query_client_resources(xcb, client));
    std::vector<xcb_res_query_client_ids_cookie_t> suspending;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto answer = operation.reply<xcb_res_query_client_resources_reply_t>(resources[i]);
        if (operation && suspends(answer.get(), suspension))
            suspending.push_back(x11::askForClientProcess(xcb, all[i]));
    }
    for (const auto client : suspending)
        if (const auto process = x11::clientProcess(operation.reply<xcb_res_query_client_ids_reply_t>(client).get()))
            processes.push_back(*process);
    return processes;
}

} // namespace kestrio
