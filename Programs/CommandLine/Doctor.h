// What each reader of system state answers right now, what is missing, and the remedy.
#pragma once

#include "Programs/CommandLine/SessionTable.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace kestrio {

struct Finding {
    enum class State {
        fine,
        missing, // the program goes on without it
        broken,  // it cannot do its work
    };
    std::string name;
    State state;
    std::string answer;
    std::string remedy = {}; // empty where nothing need be done

    friend bool operator==(const Finding&, const Finding&) = default;
};

std::string_view rawValue(Finding::State state);
nlohmann::ordered_json toJSON(const Finding& finding);

/// The findings as lines for people, with a sum at the end.
std::string findingsText(const std::vector<Finding>& findings, const TableStyle& style);

} // namespace kestrio
