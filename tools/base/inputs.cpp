#include "tools/base/inputs.h"

#include "desk/tuning/load.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/sample/sample.h"

namespace qz::tool {

using namespace desk;

namespace {

constexpr const char *sample_name = "the embedded sample";

} // namespace

void expect_one_standard_input(const input_files &files)
{
    if (files.tuning == "-" && files.scene == "-")
        throw usage_error("--tuning and --scene: found standard input for both, expected it for one");
}

byte_buffer scene_bytes(const input_files &files)
{
    return files.scene ? read_file(*files.scene) : byte_buffer(sample_scene.begin(), sample_scene.end());
}

byte_buffer tuning_bytes(const input_files &files)
{
    return files.tuning ? read_file(*files.tuning) : byte_buffer(sample_tuning.begin(), sample_tuning.end());
}

scene load_scene(const input_files &files)
{
    return read_scene(scene_name(files), text_of(scene_bytes(files)));
}

byte_buffer load_container(const input_files &files)
{
    return usable_container(tuning_name(files), tuning_bytes(files));
}

std::vector<std::string> source_files(const input_files &files)
{
    std::vector<std::string> sources;
    for (const std::optional<std::string> &file : {files.tuning, files.scene}) {
        if (file)
            sources.push_back(*file);
    }
    return sources;
}

std::string tuning_name(const input_files &files)
{
    return files.tuning ? input_name(*files.tuning) : sample_name;
}

std::string scene_name(const input_files &files)
{
    return files.scene ? input_name(*files.scene) : sample_name;
}

} // namespace qz::tool
