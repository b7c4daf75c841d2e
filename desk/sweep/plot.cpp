#include "desk/sweep/plot.h"

#include <charconv>
#include <iterator>
#include <nlohmann/json.hpp>
#include <type_traits>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/base/error.h"
#include "desk/base/numbers.h"
#include "desk/scene/frame_fields.h"

namespace qz::desk {

namespace {

// A value as rows show it: the shortest number that reads back as the same one of its type.
double shown(const sweep_range &range, uint64_t place)
{
    const double value = range.value(place);
    if (range.varied.is_whole())
        return value;
    char digits[32];
    const char *const end = std::to_chars(digits, std::end(digits), static_cast<float>(value)).ptr;
    return number_of({digits, static_cast<size_t>(end - digits)}).value_or(value);
}

std::string effects_text(double word)
{
    std::vector<std::string_view> names;
    for (const auto &[bit, name] : named_effects) {
        if ((static_cast<uint32_t>(word) & bit) != 0)
            names.push_back(name);
    }
    return names.empty() ? "none" : fmt::format("{}", fmt::join(names, "+"));
}

json range_json(const sweep_range &range)
{
    json values = json::array();
    json labels = json::array();
    for (uint64_t place = 0; place < range.count; ++place) {
        values.push_back(shown(range, place));
        if (range.varied.words != nullptr)
            labels.push_back(effects_text(values.back().get<double>()));
    }
    json made = {{"name", range.varied.name}, {"values", std::move(values)}, {"multiplies", range.multiplies}};
    if (!labels.empty())
        made["labels"] = std::move(labels);
    return made;
}

json frames_json(const sweep_plan &plan)
{
    json values = json::array();
    json labels = json::array();
    for (size_t frame = plan.frames().first; frame < plan.frames().last; ++frame) {
        values.push_back(frame);
        const std::string &name = plan.frame_name(frame);
        labels.push_back(name.empty() ? fmt::format("frame {}", frame) : name);
    }
    return {{"name", "frame"}, {"values", std::move(values)}, {"multiplies", false}, {"labels", std::move(labels)}};
}

json values_json(const std::vector<plotted_value> &values)
{
    json list = json::array();
    const std::string *before = nullptr;
    for (const plotted_value &value : values) {
        json &made = list.emplace_back();
        if (const auto *const whole = std::get_if<int64_t>(&value))
            made = *whole;
        else if (const auto *const real = std::get_if<double>(&value))
            made = *real;
        else if (const auto *const text = std::get_if<std::string>(&value)) {
            made = before != nullptr && *before == *text ? json(0) : json(*text);
            before = text;
        }
    }
    return list;
}

json column_json(const sweep_column &column, const std::vector<plotted_value> &values)
{
    json made = {{"name", column.name}};
    if (column.block != nullptr)
        made["block"] = column.block->name;
    if (column.of_origin)
        made["origin"] = column.value_name.substr(column.value_name.rfind('.') + 1);
    if (column.described != nullptr) {
        const named_value limits = {"", column.described->type, nullptr, nullptr};
        made["limits"] = {limits.least(), limits.most()};
    }
    made["values"] = values_json(values);
    return made;
}

} // namespace

void expect_plottable(const sweep_plan &plan)
{
    const row_span &rows = plan.rows();
    if (!plan.holds_all_rows())
        fail({std::nullopt, "shard", "a part of the rows", "all of them for a plot"});
    const size_t columns = plan.columns().size();
    if (rows.last > most_plotted_values / columns)
        fail({std::nullopt, "plot", fmt::format("{} rows of {} values", rows.last, columns),
              fmt::format("at most {} values in a page: choose fewer --fields or larger steps", most_plotted_values)});
}

void plotted_rows::add(const std::vector<sweep_column> &columns, const column_source &values)
{
    for (size_t i = 0; i < columns.size(); ++i)
        std::visit(
            [&](const auto &value) {
                if constexpr (std::is_same_v<decltype(value), const std::string_view &>)
                    columns_[i].emplace_back(std::string(value));
                else
                    columns_[i].emplace_back(value);
            },
            column_value(columns[i], values));
}

void plotted_rows::append(plotted_rows &&more)
{
    for (size_t i = 0; i < columns_.size(); ++i)
        std::ranges::move(more.columns_[i], std::back_inserter(columns_[i]));
}

json plotted_rows::data(const sweep_plan &plan) const
{
    json ranges = json::array();
    if (plan.tells_frames())
        ranges.push_back(frames_json(plan));
    for (const sweep_range &range : plan.ranges())
        ranges.push_back(range_json(range));
    json columns = json::array();
    for (size_t i = 0; i < columns_.size(); ++i)
        columns.push_back(column_json(plan.columns()[i], columns_[i]));
    return {{"ranges", std::move(ranges)}, {"columns", std::move(columns)}};
}

} // namespace qz::desk
