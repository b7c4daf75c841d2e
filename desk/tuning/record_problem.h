// What is wrong with one record of a container, whatever stands around it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "desk/base/bytes.h"

namespace qz::desk {

struct record_problem {
    std::string_view code; // short and stable: "rows-missing"
    bool refused;          // by the library, with the container; else it does something silently
    std::string text;
};

// Of the bytes of a record, header included, which are as many as its size says.
std::optional<record_problem> find_problem(byte_view record);

// Of a record that its list, of so many bytes from the record on, does not hold.
record_problem bad_size(size_t size, size_t left);

} // namespace qz::desk
