#include "inputs.h"

#include <charconv>

#include <fmt/format.h>

#include "error.h"
#include "sample.h"
#include "tuning_source.h"

namespace qz::tool {

namespace {

constexpr const char *sample_name = "the embedded sample";

} // namespace

void expect_one_standard_input(const input_files &files)
{
    if (files.tuning == "-" && files.scene == "-")
        throw usage_error("--tuning and --scene: found standard input for both, expected it for one");
}

scene load_scene(const input_files &files)
{
    if (!files.scene)
        return read_scene(sample_name, sample_scene);
    const byte_buffer bytes = read_file(*files.scene);
    return read_scene(input_name(*files.scene), {reinterpret_cast<const char *>(bytes.data()), bytes.size()});
}

byte_buffer load_container(const input_files &files)
{
    if (!files.tuning)
        return pack_container(sample_name, sample_tuning);
    const std::string name = input_name(*files.tuning);
    byte_buffer bytes = container_bytes(name, read_file(*files.tuning));
    for (const tuning_problem &problem : read_container(name, bytes).problems) {
        if (problem.error)
            throw file_error(name, problem_text(problem));
    }
    return bytes;
}

std::string tuning_name(const input_files &files)
{
    return files.tuning ? input_name(*files.tuning) : sample_name;
}

std::string scene_name(const input_files &files)
{
    return files.scene ? input_name(*files.scene) : sample_name;
}

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

} // namespace qz::tool
