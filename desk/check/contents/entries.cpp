#include "desk/check/contents/entries.h"

#include <map>
#include <vector>

#include <fmt/format.h>

#include "color/macc_entries.h"
#include "tuning/record_view.h"

namespace qz::desk {

namespace {

constexpr uint16_t base_set = 0;
constexpr uint16_t most_effects = 4; // that entries replace the tables of

// A type and a key alone, at any alignment.
struct entry_choice {
    uint16_t type;
    uint16_t key;
};

entry_choice choice_of(const checked_record &record, size_t entry)
{
    const uint8_t *bytes = record.row(entry);
    return {value_at<uint16_t>(bytes, offsetof(isp_macc_entry, type)),
            value_at<uint16_t>(bytes, offsetof(isp_macc_entry, key))};
}

} // namespace

void check_entries(const checked_record &record, const reporter &report)
{
    const field &type_field = record.kind->fields[0];
    const field &key_field = record.kind->fields[1];
    std::map<uint16_t, size_t> base_sets; // by key
    std::map<uint16_t, size_t> tables;    // by type
    std::optional<uint16_t> last_key;     // of the base sets so far
    for (size_t i = 0; i < record.rows; ++i) {
        const auto [type, key] = choice_of(record, i);
        if (type > most_effects) {
            report.add("entry-ignored", place_of(record, i, type_field, 0),
                       fmt::format("found type {}, expected 0 to {}", type, most_effects));
        } else if (type != base_set) {
            const auto [earlier, is_first] = tables.try_emplace(type, i);
            if (!is_first)
                report.add("entry-hidden", place_of(record, earlier->second),
                           fmt::format("found type {}, which entry {} has too", type, i));
            earlier->second = i;
        } else {
            const auto [earlier, is_first] = base_sets.try_emplace(key, i);
            if (!is_first)
                report.add("entry-hidden", place_of(record, i, key_field, 0),
                           fmt::format("found key {}, which entry {} has too", key, earlier->second));
            else if (last_key && key < *last_key)
                report.add("keys-descending", severity::note, place_of(record, i, key_field, 0),
                           fmt::format("found {} behind {}", key, *last_key));
            last_key = key;
        }
    }
    if (record.rows > 0 && !base_sets.contains(0))
        report.add("base-set-missing", place_of(record),
                   fmt::format("found {} base sets, none of key 0", base_sets.size()));
}

} // namespace qz::desk
