#include "desk/check/contents/limits.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include <fmt/format.h>

#include "frame/curve_point.h"
#include "frame/defaults.h"
#include "noise_detail/strength.h"
#include "qz_isp/color.h"
#include "qz_isp/noise_detail.h"
#include "tuning/record_view.h"

namespace qz::desk {

namespace {

// A record of the 320 family with one row: at its key the block gives what it makes of the row.
class one_row {
  public:
    one_row(const checked_record &record, size_t row) : key_(static_cast<uint16_t>(record.key(row)))
    {
        bytes_[ISP_SHORT_ROW_COUNT_AT] = 1;
        std::memcpy(bytes_ + start, record.row(row), record.kind->size);
    }

    uint16_t gain() const { return key_; }
    isp_table_slot slot() { return {reinterpret_cast<isp_record *>(bytes_), bytes_ + start}; }

  private:
    static constexpr size_t start = ISP_SHORT_ROW_COUNT_AT + sizeof(uint16_t);

    uint16_t key_;
    alignas(isp_record) uint8_t bytes_[64] = {};
};

constexpr size_t most_fields = 8;
using outputs = std::array<uint32_t, most_fields>;

outputs run_noise_reduction(one_row &row, int8_t strength)
{
    outputs out = {};
    const isp_table_slot slot = row.slot();
    compute_noise_reduction(row.gain(), &slot, strength, out.data(), &out[1], &out[2], &out[3], &out[4]);
    return out;
}

outputs run_y_edge_enhancement(one_row &row, int8_t sharpness)
{
    uint16_t out[4];
    const isp_table_slot slot = row.slot();
    compute_y_edge_enhancement(row.gain(), &slot, sharpness, out, out + 1, out + 2, out + 3);
    return {out[0], out[1], out[2], out[3]};
}

outputs run_chroma_nr(one_row &row, const isp_chroma_nr_slot &slot, int8_t strength)
{
    uint16_t fields[most_fields];
    compute_chroma_nr(row.gain(), &slot, strength, fields);
    outputs out;
    std::ranges::copy(fields, out.begin());
    return out;
}

outputs run_chroma_nr_bytes(one_row &row, int8_t strength)
{
    return run_chroma_nr(row, {row.slot().record, row.slot().data, nullptr}, strength);
}

outputs run_chroma_nr_alt(one_row &row, int8_t strength)
{
    return run_chroma_nr(row, {row.slot().record, nullptr, row.slot().data}, strength);
}

// Elements of a kind's second field (the first is the key) that a control scales up to a limit.
struct limited_field {
    std::string_view kind;
    size_t first;
    size_t count;
    strength_rule rule;
    std::string_view control;
    outputs (*run)(one_row &row, int8_t strength);
};

constexpr limited_field limited_fields[] = {
    {"noise_reduction", 0, 2, noise_reduction_strength, "nr_strength", run_noise_reduction},
    {"y_edge_enhancement", 0, 4, y_edge_enhancement_strength, "sharpness", run_y_edge_enhancement},
    {"chroma_nr", 2, 6, chroma_nr_strength, "nr_strength", run_chroma_nr_bytes},
    {"chroma_nr_alt", 2, 6, chroma_nr_strength, "nr_strength", run_chroma_nr_alt},
};

// Rows at which something is so, of one element.
struct row_tally {
    size_t first = 0;
    size_t count = 0;

    void add(size_t row)
    {
        if (count++ == 0)
            first = row;
    }
};

// Values that a block limits at some of the rows or at all.
void report_clipped(const checked_record &record, const field &column, size_t element, const row_tally &clipped,
                    const std::string &limit, const reporter &report)
{
    if (clipped.count == 0)
        return;
    const finding_place place = place_of(record, clipped.first, column, element);
    const int64_t value = record.value(clipped.first, column, element);
    if (clipped.count == record.rows)
        report.add("clipped-everywhere", place, fmt::format("found {} and all rows beyond {}", value, limit));
    else
        report.add("clipped-in-rows", place,
                   fmt::format("found {} beyond {}{}", value, limit, and_more(clipped.count - 1, "rows")));
}

void check_strength(const checked_record &record, const limited_field &limited, const reporter &report)
{
    const field &column = record.kind->fields[1];
    const bool up = limited.rule.at_127 > 0; // the sign that raises values
    const int8_t weakest = up ? 1 : -1;
    const int8_t strongest = up ? std::numeric_limits<int8_t>::max() : std::numeric_limits<int8_t>::min();
    std::array<row_tally, most_fields> beyond;
    std::array<row_tally, most_fields> at_limit;
    std::array<row_tally, most_fields> wrapped;
    for (size_t row = 0; row < record.rows; ++row) {
        one_row alone(record, row);
        const outputs plain = limited.run(alone, 0);
        const outputs weak = limited.run(alone, weakest);
        const outputs strong = limited.run(alone, strongest);
        for (size_t i = limited.first; i < limited.first + limited.count; ++i) {
            if (plain[i] > limited.rule.limit)
                beyond[i].add(row);
            if (weak[i] == limited.rule.limit && plain[i] != 0)
                at_limit[i].add(row);
            if (strong[i] < std::min(plain[i], limited.rule.limit))
                wrapped[i].add(row);
        }
    }
    for (size_t i = limited.first; i < limited.first + limited.count; ++i) {
        report_clipped(record, column, i, beyond[i],
                       fmt::format("{}, the limit where {} is not 0", limited.rule.limit, limited.control), report);
        if (at_limit[i].count == record.rows && beyond[i].count < record.rows)
            report.add(
                "strength-clipped", place_of(record, at_limit[i].first, column, i),
                fmt::format("found {} from {} {} on, at all rows", limited.rule.limit, limited.control, weakest));
        if (wrapped[i].count > 0)
            report.add("strength-wraps", place_of(record, wrapped[i].first, column, i),
                       fmt::format("found {}, too large for {} {}{}", record.value(wrapped[i].first, column, i),
                                   limited.control, strongest, and_more(wrapped[i].count - 1, "rows")));
    }
}

// The last two fields are never positive.
void check_fringe_signs(const checked_record &record, const reporter &report)
{
    const field &column = record.kind->fields[2];
    std::array<row_tally, 2> clipped;
    for (size_t row = 0; row < record.rows; ++row) {
        one_row alone(record, row);
        const isp_fringe_control_slot slot = {alone.slot().record, alone.slot().data, 1, nullptr};
        aic_fringe_control block = {};
        compute_fringe_control(alone.gain(), &slot, 0, &block);
        for (size_t i = 0; i < clipped.size(); ++i)
            if (block.field_10_to_11[i] == 0 && record.value(row, column, i) > 0)
                clipped[i].add(row);
    }
    for (size_t i = 0; i < clipped.size(); ++i)
        report_clipped(record, column, i, clipped[i], "0", report);
}

// Points of a curve times the scale of the first row.
void check_curve(const checked_record &record, const field &curve, const field &scale, const reporter &report)
{
    const auto factor = static_cast<uint32_t>(record.value(0, scale, 0));
    for (size_t i = 0; i < curve.count; ++i) {
        row_tally clipped;
        for (size_t row = 0; row < record.rows; ++row) {
            const int64_t value = record.value(row, curve, i);
            const auto point = static_cast<uint32_t>(value);
            const int32_t product = curve_product(point, factor);
            if (product != value * static_cast<int32_t>(factor))
                report.add("value-wraps", place_of(record, row, curve, i),
                           fmt::format("found {} times {}, which gives {}", value, static_cast<int32_t>(factor),
                                       curve_point(point, factor)));
            else if (product < 0 || product > curve_product_limit)
                clipped.add(row);
        }
        report_clipped(record, curve, i, clipped,
                       fmt::format("0 to {}, with a scale of {} / 512", curve_point(curve_product_limit + 1, 1),
                                   static_cast<int32_t>(factor)),
                       report);
    }
    for (size_t row = 1; row < record.rows; ++row)
        if (record.value(row, scale, 0) != record.value(0, scale, 0))
            report.add("value-ignored", place_of(record, row, scale, 0),
                       fmt::format("found {}, where the scale of row 0, {}, counts at all gains",
                                   record.value(row, scale, 0), record.value(0, scale, 0)));
}

void check_curves(const checked_record &record, const reporter &report)
{
    const auto fields = record.kind->fields;
    check_curve(record, fields[1], fields[3], report);
    check_curve(record, fields[2], fields[4], report);
}

// Parameters that a block stores as they are, as unsigned numbers, beside those it has untuned.
struct unsigned_params {
    std::string_view kind;
    std::span<const uint32_t> untuned;
};

constexpr unsigned_params all_unsigned[] = {
    {"long_3", defaults::long_3},         {"long_5", defaults::long_5.param},   {"long_6", defaults::long_6.param},
    {"long_7", defaults::long_7.param},   {"long_11", defaults::long_11.param}, {"long_12", defaults::long_12.param},
    {"long_13", defaults::long_13.param},
};

void check_signs(const checked_record &record, const unsigned_params &params, const reporter &report)
{
    const field &column = record.kind->fields.back();
    for (size_t i = 0; i < column.count; ++i) {
        if (static_cast<int32_t>(params.untuned[i]) < 0) // one that is signed after all
            continue;
        row_tally negative;
        for (size_t row = 0; row < record.rows; ++row)
            if (record.value(row, column, i) < 0)
                negative.add(row);
        if (negative.count == 0)
            continue;
        const int64_t value = record.value(negative.first, column, i);
        report.add("value-negative", place_of(record, negative.first, column, i),
                   fmt::format("found {}, stored as {}{}", value, static_cast<uint32_t>(value),
                               and_more(negative.count - 1, "rows")));
    }
}

void check_shift(const checked_record &record, const reporter &report)
{
    alignas(isp_record) uint8_t bytes[ISP_RECORD_HEADER_SIZE + sizeof(isp_ctc_config_values)] = {};
    std::memcpy(bytes, record.bytes.data(), std::min(record.bytes.size(), sizeof bytes));
    const auto tuned = value_at<isp_ctc_config_values>(bytes, ISP_RECORD_HEADER_SIZE);
    isp_ctc_config_values block;
    uint16_t words[sizeof block / sizeof(uint16_t)];
    compute_ctc_config(reinterpret_cast<const isp_record *>(bytes), 1.0f, words);
    std::memcpy(&block, words, sizeof block);
    if (block.base_shift < tuned.base_shift)
        report.add("value-truncated", place_of(record, record.kind->fields[1], 0),
                   fmt::format("found {}, which the block makes {}", tuned.base_shift, block.base_shift));
}

} // namespace

void check_limits(const checked_record &record, const reporter &report)
{
    const std::string_view kind = record.kind->name;
    if (kind == "ctc_config")
        check_shift(record, report);
    if (record.rows == 0)
        return;
    const auto *const limited = std::ranges::find(limited_fields, kind, &limited_field::kind);
    if (limited != std::end(limited_fields))
        check_strength(record, *limited, report);
    const auto *const params = std::ranges::find(all_unsigned, kind, &unsigned_params::kind);
    if (params != std::end(all_unsigned))
        check_signs(record, *params, report);
    if (kind == "fringe_control")
        check_fringe_signs(record, report);
    if (kind == "long_5")
        check_curves(record, report);
}

} // namespace qz::desk
