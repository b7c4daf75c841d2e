#include "desk/diff/makernote_parts.h"

#include <map>
#include <nlohmann/json.hpp>

#include <fmt/format.h>

#include "desk/json/json.h"
#include "qz_isp/makernote_records.h"

namespace qz::desk {

namespace {

// The one that every frame begins with.
constexpr uint32_t first_of_frame = ISP_MAKERNOTE_WHITE_BALANCE;

// Text is any bytes, of which JSON takes only some.
std::string quoted(const std::string &text)
{
    return json(text).dump(-1, ' ', true, json::error_handler_t::replace);
}

std::vector<placed_value> values_of(const makernote_record &record)
{
    std::vector<placed_value> values = {{"format", "", quoted(std::string(makernote_format_name(record.format)))}};
    if (!record.key.empty())
        values.push_back({"key", "", quoted(record.key)});
    if (record.is_text()) {
        values.push_back({"text", "", quoted(record.text())});
        return values;
    }
    const std::vector<int64_t> numbers = record.values();
    for (size_t i = 0; i < numbers.size(); ++i)
        values.push_back({"value", fmt::format("[{}]", i), std::to_string(numbers[i])});
    return values;
}

} // namespace

std::vector<file_part> makernote_parts(const saved_makernote &makernote)
{
    std::vector<file_part> parts = {{"makernote", {{"dropped", "", std::to_string(makernote.dropped)}}}};
    std::map<std::string, unsigned> times;
    std::string place = "start";
    size_t frames = 0;
    for (const makernote_record &record : makernote.records) {
        if (record.name == first_of_frame)
            place = fmt::format("frame {}", frames++);
        std::string name = fmt::format("{}, record {} {}", place, record.name, makernote_record_name(record.name));
        name.erase(name.find_last_not_of(' ') + 1);
        const unsigned number = ++times[name];
        parts.push_back({number == 1 ? name : fmt::format("{} ({} of this name)", name, number), values_of(record)});
    }
    return parts;
}

} // namespace qz::desk
