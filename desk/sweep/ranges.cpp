#include "desk/sweep/ranges.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include <fmt/format.h>

#include "desk/base/numbers.h"
#include "desk/run/settings.h"
#include "desk/scene/input_by_name.h"
#include "desk/tuning/value_by_name.h"

namespace qz::desk {

namespace {

// All values of a 32-bit input; single precision has fewer.
constexpr double max_count = 4294967296.0;

// Of a count of factors, which logarithms give.
constexpr double factor_rounding = 1e-9;

void read_list(const value_option &option, std::string_view values, sweep_range &range)
{
    size_t start = 0;
    for (size_t end = 0; end != std::string_view::npos; start = end + 1) {
        end = values.find(',', start);
        const std::string_view text = values.substr(start, end - start);
        const double value = range.varied.read(option, text);
        if (std::ranges::find(range.list, value) != range.list.end())
            option.fail(fmt::format("{} twice", text), "every value once");
        range.list.push_back(value);
    }
    range.count = range.list.size();
}

// What stands behind the ends: a step is a number above 0, a factor one above 1.
double read_stride(const value_option &option, std::string_view text, double above, bool whole)
{
    const std::optional<double> stride = number_of(text);
    if (!stride || !(*stride > above) || *stride > DBL_MAX || (whole && *stride != std::floor(*stride)))
        option.fail(fmt::format("\"{}\"", text),
                    fmt::format("a {}{} above {}", whole ? "whole " : "", above == 0 ? "step" : "factor", above));
    return *stride;
}

void read_steps(const value_option &option, std::string_view values, sweep_range &range)
{
    const bool whole = range.varied.is_whole();
    const size_t dots = values.find("..");
    const size_t mark = std::min(values.find_first_of(":*", dots), values.size());
    const std::string_view stride = mark < values.size() ? values.substr(mark + 1) : "1";
    range.first = range.varied.read(option, values.substr(0, dots));
    range.last = range.varied.read(option, values.substr(dots + 2, mark - dots - 2));
    range.multiplies = mark < values.size() && values[mark] == '*';
    range.stride = read_stride(option, stride, range.multiplies ? 1 : 0, whole);
    if (range.multiplies && !(range.first > 0 && range.last > 0))
        option.fail(fmt::format("{} and {}", range.first, range.last), "ends above 0 for a factor");

    // A last value that rounding alone puts beyond the end belongs to the range.
    const auto [low, high] = std::minmax(range.first, range.last);
    const double length =
        range.multiplies ? std::log(high / low) / std::log(range.stride) : (high - low) / range.stride;
    double rounding = 0;
    if (range.multiplies)
        rounding = factor_rounding;
    else if (!whole)
        rounding = 4 * DBL_EPSILON * std::max(std::abs(low), std::abs(high)) / range.stride;
    const double steps = std::floor(length + rounding);
    if (!(steps < max_count))
        option.fail(fmt::format("{} values", steps + 1), "at most 4294967296");
    range.count = static_cast<uint64_t>(steps) + 1;
}

sweep_range read_range(const value_option &option, frame_inputs &inputs, byte_buffer &container)
{
    const auto [name, values] =
        option.name_and_value("NAME=FIRST..LAST:STEP, NAME=FIRST..LAST*FACTOR or NAME=VALUE,VALUE");
    sweep_range range = {find_value(option, name, inputs, container), {}, 0, 0, 0, false, 0};
    if (values.find("..") == std::string_view::npos)
        read_list(option, values, range);
    else
        read_steps(option, values, range);
    return range;
}

// The same on every machine.
double power(double base, uint64_t exponent)
{
    double result = 1;
    for (; exponent != 0; exponent >>= 1, base *= base)
        result *= exponent & 1 ? base : 1;
    return result;
}

} // namespace

double sweep_range::value(uint64_t place) const
{
    if (!list.empty())
        return list[static_cast<size_t>(place)];
    const bool falls = last < first;
    const double length = multiplies ? power(stride, place) : static_cast<double>(place) * stride;
    const double value =
        multiplies ? (falls ? first / length : first * length) : (falls ? first - length : first + length);
    return falls ? std::max(value, last) : std::min(value, last);
}

sweep_ranges::sweep_ranges(const std::vector<std::string> &options, frame_inputs &inputs, byte_buffer &container)
{
    std::vector<std::pair<const void *, std::string>> taken;
    const auto take = [&](const value_option &option, const void *address, const std::string &name) {
        for (const auto &[other, other_name] : taken) {
            if (other == address)
                option.fail(fmt::format("the input that {} sets already", other_name), "every input once");
        }
        taken.emplace_back(address, name);
    };
    for (const std::string &text : options) {
        const value_option option = {"over", text};
        const sweep_range &range = ranges_.emplace_back(read_range(option, inputs, container));
        take(option, range.varied.place, range.varied.name);
        vary_tuning_ = vary_tuning_ || range.varied.name.starts_with(tuning_prefix);
        if (range.varied.name == gain_name)
            take(option, &inputs.exposure->digital_gain, range.varied.name);
        if (range.count > UINT64_MAX / rows_)
            option.fail("more than 2^64 rows", "fewer");
        rows_ *= range.count;
    }
}

void sweep_ranges::apply(uint64_t row) const
{
    for (auto range = ranges_.rbegin(); range != ranges_.rend(); ++range) {
        range->varied.set(range->value(row % range->count));
        row /= range->count;
    }
}

} // namespace qz::desk
