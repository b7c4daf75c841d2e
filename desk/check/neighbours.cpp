#include "desk/check/neighbours.h"

#include <algorithm>
#include <cmath>
#include <map>

#include <fmt/format.h>

#include "desk/check/contents/rows.h"
#include "desk/tuning/value_by_name.h"
#include "qz_isp/gain.h"
#include "tuning/record_view.h"

namespace qz::desk {

namespace {

// Powers of two: four times as much as the rest of the record, or a whole record or fixed value of four times.
constexpr double far_apart = 2;

// Of values that are compared for what is typical of a record; more say no more.
constexpr size_t most_samples = 4096;

// A record's values at the keys of another.
class values_at_keys {
  public:
    explicit values_at_keys(const checked_record &record) : record_(record), by_key_(rows_by_key(record)) {}

    // Keys must not fall from call to call.
    void move_to(int32_t key)
    {
        key_ = key;
        while (upper_ + 1 < by_key_.size() && record_.key(by_key_[upper_]) < key)
            ++upper_;
    }

    int64_t at(const field &column, size_t element) const
    {
        const size_t upper = by_key_[upper_];
        const size_t lower = upper_ > 0 && record_.key(upper) > key_ ? by_key_[upper_ - 1] : upper;
        return interpolate_linear(record_.key(lower), record_.key(upper), value(lower, column, element),
                                  value(upper, column, element), key_);
    }

  private:
    int32_t value(size_t row, const field &column, size_t element) const
    {
        return static_cast<int32_t>(record_.value(row, column, element));
    }

    const checked_record &record_;
    std::vector<size_t> by_key_;
    size_t upper_ = 0;
    int32_t key_ = 0;
};

// Calls visit with every value of a record and its neighbour's at the same gain, and where it stands.
template <typename Visit>
void compare(const checked_record &record, const checked_record &neighbour, const Visit &visit)
{
    const record_kind &kind = *record.kind;
    if (kind.layout == ISP_LAYOUT_VALUES) {
        for (const field &column : kind.fields)
            for (size_t i = 0; i < column.count; ++i)
                visit(integer_at(column, record.bytes.data() + kind.start, i),
                      integer_at(column, neighbour.bytes.data() + kind.start, i), column, i, size_t{0});
        return;
    }
    values_at_keys beside(neighbour);
    for (const size_t row : rows_by_key(record)) {
        beside.move_to(record.key(row));
        for (const field &column : kind.fields.subspan(1)) // the key comes first
            for (size_t i = 0; i < column.count; ++i)
                visit(record.value(row, column, i), beside.at(column, i), column, i, row);
    }
}

bool can_compare(const checked_record &record)
{
    const record_kind &kind = *record.kind;
    if (kind.layout == ISP_LAYOUT_VALUES)
        return record.bytes.size() >= kind.start + kind.size;
    return has_gain_rows(kind.layout) && record.rows > 0;
}

// How many times the record is its neighbour, in powers of two; of 0 nothing is any number of times.
double typical_ratio(const checked_record &record, const checked_record &neighbour)
{
    const size_t values = record.rows * record.kind->size;
    const size_t step = values / most_samples + 1;
    std::vector<double> ratios;
    size_t number = 0;
    compare(record, neighbour, [&](int64_t value, int64_t beside, const field &, size_t, size_t) {
        if (number++ % step == 0 && value != 0 && beside != 0)
            ratios.push_back(std::copysign(octaves_between(beside, value), std::abs(static_cast<double>(value)) -
                                                                               std::abs(static_cast<double>(beside))));
    });
    if (ratios.empty())
        return 0;
    const auto middle = ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2);
    std::ranges::nth_element(ratios, middle);
    return *middle;
}

std::string name_of(const checked_record &record)
{
    return fmt::format("{}[{}/{}]", record.kind->name, record.set, record.set_index);
}

// Fixed values have no rest to be compared with: each is a record of its own.
void check_values(const checked_record &record, const checked_record &neighbour, const reporter &report)
{
    compare(record, neighbour, [&](int64_t value, int64_t beside, const field &column, size_t i, size_t) {
        if (std::abs(value - beside) >= least_leap && value != 0 && beside != 0 &&
            octaves_between(value, beside) > far_apart)
            report.add("set-jump", place_of(record, column, i),
                       fmt::format("found {}, {} in {}", value, beside, name_of(neighbour)));
    });
}

void check_rows(const checked_record &record, const checked_record &neighbour, const reporter &report)
{
    const double typical = typical_ratio(record, neighbour);
    const double times = std::exp2(typical);
    if (std::abs(typical) > far_apart)
        report.add("set-jump", place_of(record),
                   fmt::format("found values about {:.3g} times those of {}", times, name_of(neighbour)));

    // The first row of each element and how many follow it, in the order of the first rows.
    struct leap {
        size_t row;
        int64_t value;
        int64_t beside;
        size_t count;
    };
    std::map<std::pair<const field *, size_t>, leap> leaps;
    compare(record, neighbour, [&](int64_t value, int64_t beside, const field &column, size_t i, size_t row) {
        const double expected = static_cast<double>(beside) * times;
        if (std::abs(static_cast<double>(value) - expected) < static_cast<double>(least_leap) ||
            octaves_between(value, std::llround(expected)) <= far_apart)
            return;
        ++leaps.try_emplace({&column, i}, leap{row, value, beside, 0}).first->second.count;
    });
    for (const auto &[element, found] : leaps)
        report.add("set-jump", place_of(record, found.row, *element.first, element.second),
                   fmt::format("found {}, {} at this key in {}, whose values are typically times {:.3g}{}", found.value,
                               found.beside, name_of(neighbour), times, and_more(found.count - 1, "rows")));
}

void check_pair(const checked_record &record, const checked_record *neighbour, const reporter &report)
{
    if (neighbour == nullptr || !can_compare(*neighbour))
        return;
    if (record.kind->layout == ISP_LAYOUT_VALUES)
        check_values(record, *neighbour, report);
    else
        check_rows(record, *neighbour, report);
}

} // namespace

void check_neighbours(const std::vector<checked_record> &records, const reporter &report)
{
    // The last record of each kind in a set index, and in each set.
    std::map<const record_kind *, const checked_record *> in_index;
    std::map<std::pair<const record_kind *, uint8_t>, const checked_record *> in_set;
    for (const checked_record &record : records) {
        if (!can_compare(record))
            continue;
        const checked_record *&last = in_index[record.kind];
        const checked_record *&last_of_set = in_set[{record.kind, record.set}];
        if (last != nullptr && last->set_index == record.set_index)
            check_pair(record, last, report);
        check_pair(record, last_of_set, report);
        last = &record;
        last_of_set = &record;
    }
}

} // namespace qz::desk
