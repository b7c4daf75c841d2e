// The values of a tuning container by the names that options give them: "tuning:xnr.rows[1].param",
// "tuning:noise_reduction[0/1].rows[2].param[0]".
#pragma once

#include <string_view>

#include "desk/base/bytes.h"
#include "desk/base/named_value.h"

namespace qz::desk {

constexpr std::string_view tuning_prefix = "tuning:";

// [SET/INDEX], the set and the set index, may be left out where the container has one place of that name. Of records
// that replace one another the last is meant. The value is in the container's bytes. Fails at other names.
named_value find_tuning_value(const value_option &option, std::string_view name, byte_buffer &container);

} // namespace qz::desk
