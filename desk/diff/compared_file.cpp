#include "desk/diff/compared_file.h"

#include <utility>

#include <fmt/format.h>

#include "desk/base/named_value.h"
#include "desk/diff/makernote_parts.h"
#include "desk/diff/record_parts.h"
#include "desk/diff/scene_parts.h"
#include "desk/diff/tuning_parts.h"
#include "desk/json/node.h"
#include "desk/makernote/file.h"
#include "desk/record/dump.h"
#include "desk/scene/input_by_name.h"
#include "desk/tuning/load.h"
#include "desk/tuning/value_by_name.h"

namespace qz::desk {

namespace {

bool is_scene(const std::string &name, byte_view bytes)
{
    const json_document document = parse_json(name, text_of(bytes));
    return json_node(document).find("frames").has_value();
}

// The values of a dump are results, which settings do not reach.
void expect_none(const std::vector<std::string> &settings, const std::string &name, std::string_view kind)
{
    if (!settings.empty())
        value_option{"set", settings.front()}.fail(fmt::format("{}, {}", name, kind), "a tuning or a scene");
}

void set_values(const std::vector<std::string> &settings, scene &scene)
{
    for (const std::string &text : settings) {
        const value_option option = {"set", text};
        const auto [name, value] = option.name_and_value();
        if (name.starts_with(tuning_prefix))
            option.fail("a value of a tuning", "an input, for a scene");
        for (frame_inputs &frame : scene.frames) {
            const named_value found = find_input(option, name, frame);
            found.set(found.read(option, value));
        }
    }
}

void set_values(const std::vector<std::string> &settings, byte_buffer &container)
{
    for (const std::string &text : settings) {
        const value_option option = {"set", text};
        const auto [name, value] = option.name_and_value();
        if (!name.starts_with(tuning_prefix))
            option.fail(fmt::format("the name \"{}\"", name),
                        fmt::format("one that begins with {}, for a tuning", tuning_prefix));
        const named_value found = find_tuning_value(option, name, container);
        found.set(found.read(option, value));
    }
}

} // namespace

compared_file read_compared(std::string name, byte_buffer bytes, const std::vector<std::string> &settings)
{
    if (is_record_dump(bytes)) {
        constexpr std::string_view kind = "a record dump";
        expect_none(settings, name, kind);
        const std::vector<record_snapshot> records = read_records(name, bytes);
        byte_buffer used;
        for (const record_snapshot &each : records)
            append_record(used, each);
        return {std::move(name), kind, std::move(used), record_parts(records)};
    }
    if (is_makernote(bytes)) {
        constexpr std::string_view kind = "a makernote";
        expect_none(settings, name, kind);
        std::vector<file_part> parts = makernote_parts(read_makernote(name, bytes));
        return {std::move(name), kind, std::move(bytes), std::move(parts)};
    }
    if (!is_container(bytes) && is_scene(name, bytes)) {
        scene read = read_scene(name, text_of(bytes));
        set_values(settings, read);
        return {std::move(name), "a scene", {}, scene_parts(read)};
    }
    byte_buffer container = container_bytes(name, std::move(bytes));
    set_values(settings, container);
    expect_container(name, container);
    std::vector<file_part> parts = tuning_parts(container);
    return {std::move(name), "a tuning", std::move(container), std::move(parts)};
}

} // namespace qz::desk
