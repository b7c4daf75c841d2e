// Where two files differ.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desk/diff/compared_file.h"

namespace qz::desk {

// A value that one of the files has otherwise or not at all.
struct difference {
    std::string field;
    std::string index;
    std::optional<std::string> a;
    std::optional<std::string> b;
};

struct part_difference {
    std::string part;
    std::string_view only_in; // the file that alone has the part, or empty
    std::vector<difference> values;
    std::string title = {}; // that every file with the part gives it, or empty
};

// Parts in the order of a, then those that b alone has; empty when not a byte differs. Fails for files of two kinds.
std::vector<part_difference> compare_files(const compared_file &a, const compared_file &b);

// Every difference, as the text of JSON.
std::string differences_json(const std::vector<part_difference> &differences);

} // namespace qz::desk
