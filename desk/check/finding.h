// What a check of a tuning finds: how bad, where, what, and why it matters.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "desk/check/codes.h"
#include "desk/json/json.h"

namespace qz::desk {

// Where in a container. What is not about one thing of it leaves that out.
struct finding_place {
    std::string name;                // "tuning:xnr[0/2].rows[1].param", "rules[3]", "id 700"; empty: the container
    std::string_view record = {};    // kind of record
    std::optional<uint16_t> id = {}; // of the record
    std::optional<uint8_t> set = {}; // 0 to 2
    std::optional<unsigned> set_index = {};
    std::optional<size_t> row = {};    // or entry, or rule
    std::optional<size_t> offset = {}; // of the record in the container
    std::optional<size_t> byte = {};   // of the row or value in the container
};

struct finding {
    const finding_code *code;
    severity level;
    finding_place place;
    std::string what;
};

// Gets the findings one by one: there may be millions.
using finding_sink = std::function<void(const finding &)>;

// "tuning:xnr[0/2].rows[1].param (offset 1224, id 335)"
std::string place_text(const finding_place &place);

json finding_json(const finding &found);

} // namespace qz::desk
