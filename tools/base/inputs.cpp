#include "tools/base/inputs.h"

#include "desk/tuning/load.h"
#include "desk/tuning/pack.h"
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

scene load_scene(const input_files &files)
{
    if (!files.scene)
        return read_scene(sample_name, sample_scene);
    const byte_buffer bytes = read_file(*files.scene);
    return read_scene(input_name(*files.scene), text_of(bytes));
}

byte_buffer load_container(const input_files &files)
{
    if (!files.tuning)
        return pack_container(sample_name, sample_tuning);
    return usable_container(input_name(*files.tuning), read_file(*files.tuning));
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
