// Where the runs of two tunings differ, gathered run by run in memory that does not grow with their number.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "desk/compare/run_result.h"

namespace qz::desk {

// One value in one run.
struct occurrence {
    uint64_t run;
    std::optional<int64_t> old_value;
    std::optional<int64_t> new_value;

    // Nothing where one side has no value.
    std::optional<uint64_t> distance() const;
    // The larger one, of equal ones the earlier.
    bool is_larger_than(const occurrence &other) const;
};

struct differing_value {
    uint32_t index; // see value_list::index_text()
    uint64_t runs;  // in which it differs
    occurrence first;
    occurrence largest;
};

struct differing_list {
    value_list list;
    uint64_t runs; // in which any of the values differs
    std::vector<differing_value> values;

    // Of all values: the first run, and the largest difference.
    const differing_value &with_first() const;
    const differing_value &with_largest() const;
};

class difference_tally {
  public:
    // Runs in any order, each once.
    void add(uint64_t run, const run_result &old_run, const run_result &new_run);
    // The runs of another one, which this one has none of.
    void add(const difference_tally &other);

    uint64_t differing_runs() const { return differing_runs_; }
    // In the order of the record, then of the makernote's names.
    std::vector<differing_list> lists() const;

  private:
    struct list_tally {
        uint64_t runs = 0;
        std::unordered_map<uint32_t, differing_value> values = {};

        void add(const differing_value &value);
    };

    uint64_t differing_runs_ = 0;
    std::map<value_list, list_tally> lists_;
    std::vector<value_pair> found_; // of one run
};

} // namespace qz::desk
