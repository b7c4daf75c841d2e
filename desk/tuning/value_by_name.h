// The records of a tuning container by name, "xnr", "noise_reduction[0/1]", and their values by the names that options
// give them: "tuning:xnr.rows[1].param", "tuning:noise_reduction[0/1].rows[2].param[0]".
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/base/named_value.h"
#include "desk/tuning/container.h"

namespace qz::desk {

constexpr std::string_view tuning_prefix = "tuning:";

// [SET/INDEX], the set and the set index, may be left out where the container has one place of that name. Of records
// that replace one another the last is meant. The value is in the container's bytes. Fails at other names.
named_value find_tuning_value(const value_option &option, std::string_view name, byte_buffer &container);

// Of every value that find_tuning_value() knows, those of a record's rows together.
std::vector<value_names> tuning_value_names(const tuning_container &container);

// Of a record in a container: "xnr[0/2]", "rules", "700[-/0]" for ids without a place.
std::string record_name(const tuning_record &record, unsigned set_index);

// A record that is no set container, likewise, or by its id. Fails at other names. file: what messages call it.
std::pair<tuning_record, std::string> find_tuning_record(const std::string &file, std::string_view name,
                                                         const tuning_container &container);

// The names that find_tuning_record() knows, without ids.
std::vector<std::string> tuning_record_names(const tuning_container &container);

} // namespace qz::desk
