// What the JSON source of a container calls things that records hold as numbers, and how it groups them.
#pragma once

#include <cstddef>
#include <string_view>
#include <type_traits>

#include "desk/tuning/layout.h"

namespace qz::desk {

// Texts that stand for 1, 2 and so on in a selection rule; other numbers stand for themselves.
constexpr std::string_view rule_kinds[] = {"frame", "aux_size"};
constexpr std::string_view rule_ops[] = {"==", "<", ">", "<=", ">="};

// A multi-axis entry's matrices, row by row.
constexpr size_t macc_matrices = std::extent_v<decltype(isp_macc_entry::matrix), 0>;
constexpr size_t macc_matrix_size = std::extent_v<decltype(isp_macc_entry::matrix), 1>;

} // namespace qz::desk
