// The library and the desk as a WebAssembly module. A host puts the bytes of files and a request into the module's
// memory, calls a function, and takes the bytes of its result.
//
// Whatever fails ends in the import "failed" with the text of the message; it must not return, and leaves a module that
// is of no further use: the host makes another one.
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <nlohmann/json.hpp>

#include "desk/base/error.h"
#include "desk/explain/computed_frames.h"
#include "desk/json/node.h"
#include "desk/makernote/file.h"
#include "desk/makernote/handle.h"
#include "desk/record/dump.h"
#include "desk/report/data.h"
#include "desk/run/settings.h"
#include "desk/scene/frame_fields.h"
#include "desk/scene/input_by_name.h"
#include "desk/scene/to_json.h"
#include "desk/tuning/container.h"
#include "desk/tuning/load.h"
#include "desk/tuning/to_json.h"
#include "qz_log.h"

using namespace qz::desk;

#define QZ_MODULE_EXPORT(name) extern "C" __attribute__((export_name(#name)))
#define QZ_MODULE_IMPORT(name) extern "C" __attribute__((import_module("page"), import_name(#name)))

QZ_MODULE_IMPORT(failed) void page_failed(const char *text, size_t size);
QZ_MODULE_IMPORT(logged) void page_logged(int level, const char *text, size_t size);

void qz_isp_desk_failed(const char *text)
{
    page_failed(text, std::strlen(text));
    __builtin_trap();
}

// Takes the place of the log library's.
void qz_log(int level, const char *format, ...)
{
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    page_logged(level, line, std::min(static_cast<size_t>(std::max(length, 0)), sizeof line - 1));
}

namespace {

// What the host hands over, in the order of its numbers.
enum input : uint8_t { tuning_input, scene_input, request_input, input_count };

std::array<byte_buffer, input_count> held_inputs;
byte_buffer result;

void set_result(std::string_view text)
{
    result.assign(text.begin(), text.end());
}

// What a request says: {"tuning": NAME, "scene": NAME, "frame": CHOICE, "settings": ["NAME=VALUE"]}. The names are what
// messages call the files.
struct request {
    std::string tuning_name = "tuning";
    std::string scene_name = "scene";
    std::optional<std::string> frame;
    std::vector<std::string> settings;
};

request read_request()
{
    const json_document text = parse_json("request", text_of(held_inputs[request_input]));
    const json_node document(text);
    document.expect_names({"tuning", "scene", "frame", "settings"});
    request read;
    if (const std::optional<json_node> name = document.find("tuning"))
        read.tuning_name = name->text();
    if (const std::optional<json_node> name = document.find("scene"))
        read.scene_name = name->text();
    if (const std::optional<json_node> choice = document.find("frame"))
        read.frame = choice->text();
    if (const std::optional<json_node> settings = document.find("settings")) {
        for (const json_node &setting : settings->items())
            read.settings.emplace_back(setting.text());
    }
    return read;
}

// A scene and a container with the request's settings.
struct prepared {
    explicit prepared(const request &asked)
        : setup(read_scene(asked.scene_name, text_of(held_inputs[scene_input]))),
          chosen(choose_frames(setup, asked.frame)),
          container(usable_container(asked.tuning_name, held_inputs[tuning_input]))
    {
        apply_settings(asked.settings, setup, chosen, container);
    }

    scene setup;
    frame_choice chosen;
    byte_buffer container;
};

[[gnu::constructor]] void expect_to_run_out_of_memory()
{
    std::set_new_handler([] { qz_isp_desk_failed("out of memory"); });
}

} // namespace

// Room for the bytes of an input, which the host fills.
QZ_MODULE_EXPORT(input_bytes) uint8_t *input_bytes(uint32_t which, uint32_t size)
{
    held_inputs.at(which).assign(size, 0);
    return held_inputs.at(which).data();
}

QZ_MODULE_EXPORT(result_bytes) const uint8_t *result_bytes()
{
    return result.data();
}

QZ_MODULE_EXPORT(result_size) size_t result_size()
{
    return result.size();
}

// The page's data for the chosen frames, as JSON.
QZ_MODULE_EXPORT(report) void report()
{
    const request asked = read_request();
    const prepared from(asked);
    json data = {{"tuning", asked.tuning_name}, {"scene", asked.scene_name}};
    data.update(report_data(from.setup, from.container, asked.tuning_name, from.chosen));
    set_result(data.dump(-1, ' ', false, json::error_handler_t::replace));
}

// The frames of the scene, and the inputs of the chosen one with their values and the range of their types, as JSON.
QZ_MODULE_EXPORT(inputs) void inputs()
{
    const request asked = read_request();
    prepared from(asked);
    json frames = json::array();
    for (const frame_inputs &frame : from.setup.frames)
        frames.push_back(frame.name);
    frame_inputs &frame = from.setup.frames[from.chosen.first];
    json list = json::array();
    for (const std::string &name : single_input_names(frame)) {
        frame_inputs held = frame; // finding makes what is missing
        const named_value found = find_input({"inputs", name}, name, held);
        list.push_back({{"name", name},
                        {"least", found.least()},
                        {"most", found.most()},
                        {"whole", found.is_whole()},
                        {"value", found.get()}});
    }
    set_result(json{{"frames", std::move(frames)}, {"effects", effect_names}, {"inputs", std::move(list)}}.dump());
}

// The bytes in use of the chosen frames' records.
QZ_MODULE_EXPORT(records) void records()
{
    const request asked = read_request();
    const prepared from(asked);
    isp_session session(from.container, asked.tuning_name, from.setup);
    result.clear();
    for (const computed_frame &frame : compute_frames(session, from.setup, from.chosen, false))
        append_record(result, frame.snapshot);
}

// The makernote of all frames up to the last chosen one, as the makernote library saves it.
QZ_MODULE_EXPORT(makernote) void makernote()
{
    const request asked = read_request();
    const prepared from(asked);
    const makernote_handle list = make_makernote();
    isp_session session(from.container, asked.tuning_name, from.setup, list.get());
    compute_frames(session, from.setup, from.chosen, false);
    result = save_makernote(list.get());
}

// The container of the tuning, its JSON source, and the scene, all three with the request's settings.
QZ_MODULE_EXPORT(container) void container()
{
    result = prepared(read_request()).container;
}

QZ_MODULE_EXPORT(source) void source()
{
    const request asked = read_request();
    const prepared from(asked);
    set_result(container_source(read_container(asked.tuning_name, from.container)));
}

QZ_MODULE_EXPORT(scene) void scene_json()
{
    set_result(scene_source(prepared(read_request()).setup));
}
