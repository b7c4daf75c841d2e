#include <charconv>
#include <memory>
#include <optional>

#include <fmt/format.h>

#include "commands.h"
#include "error.h"
#include "record_print.h"
#include "sample.h"
#include "session.h"
#include "tuning_source.h"

namespace qz::tool {

namespace {

constexpr const char *sample_name = "the embedded sample";

struct run_options {
    std::optional<std::string> tuning;
    std::optional<std::string> scene;
    std::optional<std::string> frame;
    std::optional<std::string> raw;
    bool as_json = false;
    bool all = false;
};

scene load_scene(const std::optional<std::string> &file)
{
    if (!file)
        return read_scene(sample_name, sample_scene);
    const byte_buffer bytes = read_file(*file);
    return read_scene(input_name(*file), {reinterpret_cast<const char *>(bytes.data()), bytes.size()});
}

byte_buffer load_container(const std::optional<std::string> &file)
{
    if (!file)
        return pack_container(sample_name, sample_tuning);
    const std::string name = input_name(*file);
    byte_buffer bytes = container_bytes(name, read_file(*file));
    for (const tuning_problem &problem : read_container(name, bytes).problems) {
        if (problem.error)
            throw file_error(name, problem_text(problem));
    }
    return bytes;
}

// First and one past the last of the frames to show: the last one, one by number or name, or all.
std::pair<size_t, size_t> chosen_frames(const scene &inputs, const std::optional<std::string> &choice)
{
    const size_t count = inputs.frames.size();
    if (!choice)
        return {count - 1, count};
    if (*choice == "all")
        return {0, count};
    for (size_t i = 0; i < count; ++i) {
        if (!choice->empty() && inputs.frames[i].name == *choice)
            return {i, i + 1};
    }
    size_t index = count;
    const char *end = choice->data() + choice->size();
    if (std::from_chars(choice->data(), end, index).ptr != end || index >= count)
        throw usage_error(
            fmt::format("--frame: found \"{}\", expected 0 to {}, a frame's name, or all", *choice, count - 1));
    return {index, index + 1};
}

std::vector<computed_frame> compute(const run_options &options)
{
    if (options.tuning == "-" && options.scene == "-")
        throw usage_error("--tuning and --scene: found standard input for both, expected it for one");
    const scene inputs = load_scene(options.scene);
    const auto [first, last] = chosen_frames(inputs, options.frame);
    isp_session session(load_container(options.tuning), options.tuning ? input_name(*options.tuning) : sample_name,
                        inputs);
    std::vector<computed_frame> frames;
    for (size_t i = 0; i < last; ++i) {
        const record_snapshot snapshot = session.run(inputs.frames[i]);
        if (i >= first)
            frames.push_back({i, inputs.frames[i].name, snapshot});
    }
    return frames;
}

byte_buffer frames_bytes(const std::vector<computed_frame> &frames)
{
    byte_buffer bytes;
    for (const computed_frame &frame : frames) {
        const auto *start = reinterpret_cast<const uint8_t *>(&frame.snapshot.record);
        bytes.insert(bytes.end(), start, start + frame.snapshot.bytes_used);
    }
    return bytes;
}

void run(const run_options &options)
{
    const std::vector<computed_frame> frames = compute(options);
    if (options.raw)
        write_file(*options.raw, frames_bytes(frames));
    else
        write_text("-", options.as_json ? frames_json(frames) : frames_text(frames, options.all));
}

} // namespace

void add_run_command(CLI::App &app)
{
    const auto options = std::make_shared<run_options>();
    CLI::App *command = app.add_subcommand("run", "Compute the frames of a scene and print the record of the last one");
    command->add_option("--tuning", options->tuning, "Tuning container, or its JSON source; else the sample")
        ->type_name("FILE");
    command->add_option("--scene", options->scene, "JSON file of frame inputs; else the sample")->type_name("FILE");
    command->add_option("--frame", options->frame, "Frame to print: its number from 0, its name, or all")
        ->type_name("FRAME");
    CLI::Option *as_json = command->add_flag("--json", options->as_json, "Print everything as JSON");
    command->add_option("--raw", options->raw, "Write the record's bytes in use instead of printing")
        ->type_name("FILE")
        ->excludes(as_json);
    command->add_flag("--all", options->all, "Print every value of every table")->excludes("--json")->excludes("--raw");
    command->footer("FILE may be - for standard input or output.\n\n"
                    "Example: the gain-dependent blocks of a scene of your own\n"
                    "  qz-isp run --tuning sensor.vuxb --scene night.json --frame 0");
    command->callback([options] { run(*options); });
}

} // namespace qz::tool
