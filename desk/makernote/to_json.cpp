#include "desk/makernote/to_json.h"

#include <nlohmann/json.hpp>

#include "desk/json/text.h"

namespace qz::desk {

std::string makernote_json(const saved_makernote &makernote)
{
    json records = json::array();
    for (const makernote_record &record : makernote.records) {
        json &made = records.emplace_back(json::object());
        made = {{"name", record.name},
                {"block", makernote_record_name(record.name)},
                {"format", makernote_format_name(record.format)},
                {"count", record.count}};
        if (record.is_text())
            made["text"] = record.text();
        else
            made["values"] = record.values();
        if (!record.key.empty())
            made["key"] = record.key;
    }
    return json_text({{"dropped", makernote.dropped}, {"records", std::move(records)}});
}

} // namespace qz::desk
