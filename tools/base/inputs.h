// What every command computes from: a tuning container and a scene, from files or built into the program.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/scene/scene.h"

namespace qz::tool {

// Files of the command line; the sample where there is none.
struct input_files {
    std::optional<std::string> tuning; // container, or its JSON source
    std::optional<std::string> scene;
};

// Throws usage_error when both are standard input.
void expect_one_standard_input(const input_files &files);

desk::scene load_scene(const input_files &files);
desk::byte_buffer load_container(const input_files &files);

// What those are made of: the bytes of the files, or of what is built in.
desk::byte_buffer scene_bytes(const input_files &files);
desk::byte_buffer tuning_bytes(const input_files &files);

// The files that are read, for output_file.
std::vector<std::string> source_files(const input_files &files);

// What messages call the tuning and the scene.
std::string tuning_name(const input_files &files);
std::string scene_name(const input_files &files);

} // namespace qz::tool
