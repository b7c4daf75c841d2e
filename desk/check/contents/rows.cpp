#include "desk/check/contents/rows.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <fmt/format.h>

#include "qz_isp/gain.h"
#include "util/gain_bracket.h"

namespace qz::desk {

namespace {

constexpr int32_t unity = 256;
constexpr int32_t highest_gain = UINT16_MAX;

// By their keys, of equal ones by their numbers.
std::vector<size_t> sorted_rows(const checked_record &record)
{
    std::vector<size_t> rows(record.rows);
    std::iota(rows.begin(), rows.end(), size_t{0});
    const auto key = [&](size_t row) { return record.key(row); };
    if (!std::ranges::is_sorted(rows, {}, key))
        std::ranges::stable_sort(rows, {}, key);
    return rows;
}

finding_place key_place(const checked_record &record, size_t row)
{
    return place_of(record, row, record.kind->fields.front(), 0);
}

// Rows beyond the gains that there are, of which one is a neighbour of those that are; and rows between 0 and unity.
void check_key_range(const checked_record &record, const std::vector<size_t> &by_key, const reporter &report)
{
    for (size_t i = 0; i < by_key.size(); ++i) {
        const int32_t key = record.key(by_key[i]);
        const bool is_last = i + 1 == by_key.size();
        if (key < 0 || key > highest_gain) {
            const bool is_nearest =
                key < 0 ? is_last || record.key(by_key[i + 1]) > 0 : i == 0 || record.key(by_key[i - 1]) < highest_gain;
            report.add("key-out-of-range", is_nearest ? severity::note : severity::warning,
                       key_place(record, by_key[i]),
                       fmt::format("found {}, expected 0 to {}{}", key, highest_gain,
                                   is_nearest ? "" : ": the row is never used"));
        } else if (!is_last && record.key(by_key[i + 1]) <= unity) {
            // A first row of key 0 is a common guard.
            report.add(
                "key-below-unity", key == 0 ? severity::note : severity::warning, key_place(record, by_key[i]),
                fmt::format("found {}, and {} behind it, where unity is {}", key, record.key(by_key[i + 1]), unity));
        }
    }
}

// The values of one element of the rows in use.
struct column {
    const checked_record &record;
    const std::vector<size_t> &by_key;
    const field &described;
    size_t element;

    size_t size() const { return by_key.size(); }
    int64_t at(size_t i) const { return record.value(by_key[i], described, element); }
    int64_t step(size_t i) const { return at(i + 1) - at(i); } // to the next
    finding_place place(size_t i) const { return place_of(record, by_key[i], described, element); }

    // Powers of two between the keys, which gains are tuned by.
    double distance(size_t i) const
    {
        const auto gain = [&](size_t n) { return std::max(1.0, static_cast<double>(record.key(by_key[n]))); };
        return std::max(0.01, std::log2(gain(i + 1) / gain(i)));
    }
};

void check_wraps(const column &values, const reporter &report)
{
    for (size_t i = 0; i + 1 < values.size(); ++i) {
        const int32_t lower = values.record.key(values.by_key[i]);
        const int32_t upper = values.record.key(values.by_key[i + 1]);
        // The product grows with the gain; the upper key gives the row itself.
        const int64_t farthest = std::min<int64_t>(int64_t{upper} - 1, highest_gain);
        if (farthest < 0 || !interpolation_wraps(lower, upper, values.at(i), values.at(i + 1), farthest))
            continue;
        const auto y0 = static_cast<int32_t>(values.at(i));
        const auto y1 = static_cast<int32_t>(values.at(i + 1));
        const auto x = static_cast<int32_t>(farthest);
        const int32_t given = interpolate_linear(lower, upper, y0, y1, x);
        const double share = (double{1} * x - lower) / (double{1} * upper - lower);
        const double meant = y0 + share * (double{1} * y1 - y0);
        if (std::abs(given - meant) > 1)
            report.add("interpolation-wraps", values.place(i + 1),
                       fmt::format("found {} at key {} behind {} at key {}: gain {} gives {}, not {:.0f}", y1, upper,
                                   y0, lower, x, given, meant));
    }
}

// Steps against the way that most of the column goes.
void check_turns(const column &values, const reporter &report)
{
    int64_t balance = 0;
    for (size_t i = 0; i + 1 < values.size(); ++i)
        balance += (values.step(i) > 0 ? 1 : 0) - (values.step(i) < 0 ? 1 : 0);
    if (balance == 0)
        balance = values.at(values.size() - 1) >= values.at(0) ? 1 : -1;

    size_t first = 0;
    size_t against = 0;
    for (size_t i = 0; i + 1 < values.size(); ++i) {
        if (balance > 0 ? values.step(i) >= 0 : values.step(i) <= 0)
            continue;
        if (against++ == 0)
            first = i;
    }
    if (against > 0)
        report.add("gain-not-monotonic", values.place(first + 1),
                   fmt::format("found {} behind {} in a column that {}{}", values.at(first + 1), values.at(first),
                               balance > 0 ? "rises" : "falls", and_more(against - 1, "such rows")));
}

// A step is a leap when it is an eighth of the column's largest value and three times what steps of the column are
// otherwise, by difference or by ratio, for a doubling of the gain. In a short column the two steps of one value that
// is off are what steps are typically: a value four times below or above those on either side is one, too.
class leap_finder {
  public:
    void check(const column &values, const reporter &report)
    {
        if (values.size() < 3)
            return;
        measure(values);
        const double typical_step = typical(steps_);
        const double typical_ratio = typical(ratios_);
        for (size_t i = 0; i + 1 < values.size(); ++i) {
            const bool is_far = steps_[i] > far_more * typical_step || ratios_[i] > far_more * typical_ratio;
            if (is_far && is_large(values.step(i)))
                report.add("row-jump", values.place(i + 1),
                           fmt::format("found {} behind {}, a step of {} where {:.0f} would be as elsewhere",
                                       values.at(i + 1), values.at(i), std::abs(values.step(i)),
                                       typical_step * values.distance(i)));
            else if (i + 2 < values.size() && is_peak(values, i + 1))
                report.add("row-jump", values.place(i + 1),
                           fmt::format("found {} between {} and {}", values.at(i + 1), values.at(i), values.at(i + 2)));
        }
    }

  private:
    static constexpr double far_more = 3;
    static constexpr double far_off = 2; // powers of two

    bool is_large(int64_t step) const { return std::abs(step) >= std::max(least_leap, largest_ / 8); }

    // Up or down.
    bool is_peak(const column &values, size_t i) const
    {
        const int64_t before = values.step(i - 1);
        const int64_t behind = values.step(i);
        const bool turns = before > 0 ? behind < 0 : before < 0 && behind > 0;
        return turns && (is_large(before) || is_large(behind)) &&
               octaves_between(values.at(i - 1), values.at(i)) > far_off &&
               octaves_between(values.at(i), values.at(i + 1)) > far_off;
    }

    void measure(const column &values)
    {
        steps_.clear();
        ratios_.clear();
        largest_ = std::abs(values.at(0));
        for (size_t i = 0; i + 1 < values.size(); ++i) {
            steps_.push_back(static_cast<double>(std::abs(values.step(i))) / values.distance(i));
            ratios_.push_back(octaves_between(values.at(i), values.at(i + 1)) / values.distance(i));
            largest_ = std::max(largest_, std::abs(values.at(i + 1)));
        }
    }

    // The median of all but the largest, so that of two a leap does not hide the other.
    double typical(const std::vector<double> &sizes)
    {
        sorted_ = sizes;
        const auto middle = sorted_.begin() + static_cast<std::ptrdiff_t>((sorted_.size() - 1) / 2);
        std::ranges::nth_element(sorted_, middle);
        return *middle;
    }

    std::vector<double> steps_;
    std::vector<double> ratios_;
    std::vector<double> sorted_;
    int64_t largest_ = 0;
};

} // namespace

std::vector<size_t> rows_by_key(const checked_record &record)
{
    std::vector<size_t> rows = sorted_rows(record);
    const auto have_equal_keys = [&](size_t a, size_t b) { return record.key(a) == record.key(b); };
    rows.erase(std::unique(rows.begin(), rows.end(), have_equal_keys), rows.end());
    return rows;
}

void check_keys(const checked_record &record, const std::vector<size_t> &by_key, const reporter &report)
{
    const std::vector<size_t> sorted = by_key.size() == record.rows ? std::vector<size_t>{} : sorted_rows(record);
    size_t first = 0;
    for (size_t i = 1; i < sorted.size(); ++i) {
        const int32_t key = record.key(sorted[i]);
        if (key != record.key(sorted[first]))
            first = i;
        else
            report.add("keys-equal", key_place(record, sorted[i]),
                       fmt::format("found {}, the key of row {}", key, sorted[first]));
    }
    for (size_t row = 1; row < record.rows; ++row) {
        if (record.key(row) < record.key(row - 1))
            report.add("keys-descending", key_place(record, row),
                       fmt::format("found {} behind {}", record.key(row), record.key(row - 1)));
    }
    check_key_range(record, by_key, report);
}

void check_columns(const checked_record &record, const std::vector<size_t> &by_key, const reporter &report)
{
    if (by_key.size() < 2)
        return;
    leap_finder leaps;
    for (const field &described : record.kind->fields.subspan(1)) { // the key comes first
        for (size_t element = 0; element < described.count; ++element) {
            const column values = {record, by_key, described, element};
            check_wraps(values, report);
            check_turns(values, report);
            leaps.check(values, report);
        }
    }
}

double octaves_between(int64_t a, int64_t b)
{
    return std::abs(std::log2((std::abs(static_cast<double>(b)) + 1) / (std::abs(static_cast<double>(a)) + 1)));
}

} // namespace qz::desk
