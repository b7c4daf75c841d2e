// The records that the library selected for a frame, traced back to where the container holds them.
#pragma once

#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "desk/run/session.h"
#include "desk/tuning/container.h"
#include "qz_isp/tuning_layout.h"

namespace qz::desk {

// A slot of the tuning set that holds a record.
#define QZ_SLOT(name) name,
enum class tuning_slot : uint8_t { ISP_TUNING_SLOTS(QZ_SLOT) none };
#undef QZ_SLOT
std::string_view slot_name(tuning_slot slot);

struct selected_record {
    const record_kind *kind;
    const isp_record *copy; // the session's, whose row count is within its bytes
    uint16_t id;
    uint8_t version;
    uint8_t set;
    unsigned set_index;
    std::optional<size_t> rule;   // the first matching rule that names the set index
    std::optional<size_t> offset; // in the container; none inside very deep nesting
};

// A selection rule and what it says of a frame.
struct evaluated_rule {
    std::string_view kind; // "frame", "aux_size", or empty: ignored
    std::string_view op;   // empty: never matches
    double threshold;
    unsigned set_index;
    bool has_set_index;          // of the tuning; a rule takes nothing without
    std::optional<int32_t> area; // of the geometry that the rule looks at; none when that is missing
    bool matches;
};

// Where a session's library filed the records of its container.
class filed_records {
  public:
    explicit filed_records(const isp_session &session);

    struct place {
        uint8_t set;
        unsigned set_index;
        std::optional<size_t> offset;
    };
    // Of a record in a slot of one of the session's sets.
    const place &place_of(const isp_record *record) const { return places_.at(record); }

  private:
    std::map<const isp_record *, place> places_;
};

// What the library selects for a frame; the session and where it filed its records must outlive it.
class frame_selection {
  public:
    frame_selection(const isp_session &session, const filed_records &filed, const frame_inputs &inputs);

    // Nothing for a slot that is empty in this frame.
    std::optional<selected_record> find(tuning_slot slot) const;

    const std::vector<evaluated_rule> &rules() const { return rules_; }
    const isp_tuning_set &selected() const { return selected_; }

  private:
    std::optional<size_t> rule_of(unsigned set_index) const;

    const filed_records *filed_;
    isp_tuning_set selected_;
    std::vector<evaluated_rule> rules_;
    bool index_0_first_;
    bool follows_rules_; // there is more than one set index to take // a selection list takes it before any rule
};

// The rows of a record of one of the row shapes.
struct record_rows {
    size_t count;
    size_t size; // bytes of a row
    const uint8_t *bytes;
    bool wide; // 32-bit signed keys, else unsigned 16-bit ones

    int32_t key(size_t row) const;
};
record_rows rows_of(const selected_record &record);
// A row's key and values.
std::vector<int32_t> row_values(const selected_record &record, size_t row);

} // namespace qz::desk
