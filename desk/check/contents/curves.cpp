#include "desk/check/contents/curves.h"

#include <algorithm>
#include <cstdlib>

#include <fmt/format.h>

namespace qz::desk {

namespace {

enum class way : uint8_t { rises, falls };

// Consecutive elements of the last field of a kind's rows or values.
struct curve_part {
    std::string_view kind;
    size_t first;
    size_t count;
    way goes;
    severity level; // of a step back
};

// The hardware looks up segments between them: out of order, some have no place.
constexpr severity positions = severity::warning;
// Of any shape, but of this one in what the block holds untuned.
constexpr severity values = severity::note;

// The parts that go one way in what the blocks hold untuned. The curves of long_5 are pairs in no order; what the
// blocks of the 320 family have side by side are parameters of different meaning.
constexpr curve_part curve_parts[] = {
    {"ctc_config", 0, 4, way::rises, positions}, // bounds of the tones
    // Nine curves of fifteen positions, which begin behind an implied 0, and sixteen values.
    {"long_6", 3, 15, way::rises, positions},
    {"long_6", 18, 16, way::falls, values},
    {"long_6", 34, 15, way::rises, positions},
    {"long_6", 49, 16, way::falls, values},
    {"long_6", 65, 15, way::rises, positions},
    {"long_6", 80, 16, way::falls, values},
    {"long_6", 96, 15, way::rises, positions},
    {"long_6", 111, 16, way::rises, values},
    {"long_6", 127, 15, way::rises, positions},
    {"long_6", 142, 16, way::rises, values},
    {"long_6", 162, 15, way::rises, positions},
    {"long_6", 177, 16, way::rises, values},
    {"long_6", 193, 15, way::rises, positions},
    {"long_6", 208, 16, way::rises, values},
    {"long_6", 224, 15, way::rises, positions},
    {"long_6", 239, 16, way::rises, values},
    {"long_6", 255, 15, way::rises, positions},
    {"long_6", 270, 16, way::rises, values},
    // A tone curve from black to white: nine positions, nine levels.
    {"long_7", 27, 9, way::rises, positions},
    {"long_7", 36, 9, way::rises, positions},
    {"long_7", 45, 5, way::falls, values},
    {"long_7", 50, 3, way::falls, values},
    // Bounds of two ramps.
    {"long_11", 6, 4, way::rises, positions},
    {"long_11", 12, 2, way::rises, positions},
    {"long_12", 31, 3, way::rises, values},
    {"long_12", 37, 6, way::rises, positions}, // from 0 to full scale
    {"long_12", 57, 4, way::rises, values},
    {"long_12", 78, 5, way::rises, values},
    {"long_12", 89, 4, way::rises, values},
};

// Steps back of up to this share of a value are taken for a plateau that is not quite even.
constexpr int64_t plateau_share = 32;

// Reports the largest step back in a part; value(i) is its i-th, place(i) where it stands.
template <typename Value, typename Place>
void check_part(const curve_part &part, const Value &value, const Place &place, const reporter &report)
{
    size_t steepest = 0;
    int64_t largest = 0;
    size_t count = 0;
    for (size_t i = part.first + 1; i < part.first + part.count; ++i) {
        const int64_t back = part.goes == way::rises ? value(i - 1) - value(i) : value(i) - value(i - 1);
        count += back > 0 ? 1 : 0;
        if (back > largest) {
            largest = back;
            steepest = i;
        }
    }
    if (count == 0)
        return;
    const bool is_plateau =
        largest <= std::max(std::abs(value(steepest)), std::abs(value(steepest - 1))) / plateau_share;
    if (is_plateau && part.level == values)
        return;
    report.add("curve-not-monotonic", is_plateau ? severity::note : part.level, place(steepest),
               fmt::format("found {} behind {}, in a curve that {} from element {} to {}{}", value(steepest),
                           value(steepest - 1), part.goes == way::rises ? "rises" : "falls", part.first,
                           part.first + part.count - 1, and_more(count - 1, "steps back")));
}

} // namespace

void check_curve_order(const checked_record &record, const reporter &report)
{
    const record_kind &kind = *record.kind;
    for (const curve_part &part : curve_parts) {
        if (part.kind != kind.name)
            continue;
        const field &column = kind.fields.back();
        if (kind.layout == ISP_LAYOUT_VALUES && record.bytes.size() >= kind.start + kind.size)
            check_part(
                part, [&](size_t i) { return integer_at(column, record.bytes.data() + kind.start, i); },
                [&](size_t i) { return place_of(record, column, i); }, report);
        for (size_t row = 0; row < record.rows; ++row)
            check_part(
                part, [&](size_t i) { return record.value(row, column, i); },
                [&](size_t i) { return place_of(record, row, column, i); }, report);
    }
}

} // namespace qz::desk
