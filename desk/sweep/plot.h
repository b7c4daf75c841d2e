// A sweep's rows as the plot page takes them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "desk/json/json.h"
#include "desk/sweep/plan.h"

namespace qz::desk {

// Values that a page may hold: some megabytes.
constexpr uint64_t most_plotted_values = 500000;

// Fails for more values than a page may hold, and for a part of the rows.
void expect_plottable(const sweep_plan &plan);

// A cell with a text of its own.
using plotted_value = std::variant<std::monostate, int64_t, double, std::string>;

// Rows one after the other, a list of values for each column.
class plotted_rows {
  public:
    explicit plotted_rows(size_t columns = 0) : columns_(columns) {}

    void add(const std::vector<sweep_column> &columns, const column_source &values);
    // Rows that follow.
    void append(plotted_rows &&more);

    // What the page shows: the ranges, and the columns with all values. In a list of texts 0 stands for the text
    // before.
    json data(const sweep_plan &plan) const;

  private:
    std::vector<std::vector<plotted_value>> columns_;
};

} // namespace qz::desk
