// What a check of a tuning found, as text.
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>

#include "desk/check/finding.h"

namespace qz::tool {

// How many findings there are of each severity.
class finding_counts {
  public:
    void add(desk::severity level) { ++counts_[static_cast<size_t>(level)]; }
    size_t of(desk::severity level) const { return counts_[static_cast<size_t>(level)]; }
    bool reach(desk::severity level) const; // whether there is one of it or a worse one

    std::string text() const; // "1 error, 2 warnings, 10 notes"

  private:
    std::array<size_t, 3> counts_ = {};
};

// The text of findings one by one: of many of one code the first, unless all are wanted, and why it matters once.
class check_text {
  public:
    explicit check_text(bool all) : all_(all) {}

    std::string add(const desk::finding &found);
    // How many were left out of each code; empty where there are none.
    std::string left_out() const;

  private:
    static constexpr size_t most_shown = 8;

    bool all_;
    std::map<std::string_view, size_t> found_; // by code
};

} // namespace qz::tool
