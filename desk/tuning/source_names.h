// The JSON source of a tuning container, in both directions: packing what container_source() gave gives the same bytes.
#pragma once

#include <string>
#include <string_view>

#include "json.h"
#include "tuning_container.h"

namespace qz::tool {

// Texts that stand for 1, 2 and so on in a selection rule; other numbers stand for themselves.
constexpr std::string_view rule_kinds[] = {"frame", "aux_size"};
constexpr std::string_view rule_ops[] = {"==", "<", ">", "<=", ">="};

// A multi-axis entry's matrices, row by row.
constexpr size_t macc_matrices = 16;
constexpr size_t macc_matrix_size = 4;

// A row of a fringe control record's second table.
constexpr element_run fringe_extra_row[] = {{element::u16, 4}};

byte_buffer pack_container(const std::string &file, std::string_view text);

json container_json(const tuning_container &container);
std::string container_source(const tuning_container &container);

// False for bytes that are JSON, as far as their beginning shows.
bool is_container(byte_view bytes);

// A container as it is, or packed from the bytes of its JSON source.
byte_buffer container_bytes(const std::string &file, byte_buffer bytes);

} // namespace qz::tool
