// What every command computes from: a tuning container and a scene, from files or built into the program.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "files.h"
#include "scene.h"

namespace qz::tool {

// Files of the command line; the sample where there is none.
struct input_files {
    std::optional<std::string> tuning; // container, or its JSON source
    std::optional<std::string> scene;
};

// Throws usage_error when both are standard input.
void expect_one_standard_input(const input_files &files);

scene load_scene(const input_files &files);
byte_buffer load_container(const input_files &files);

// What messages call the tuning and the scene.
std::string tuning_name(const input_files &files);
std::string scene_name(const input_files &files);

// First and one past the last of the frames that --frame names: the last one without it, one by name or number, or
// "all".
std::pair<size_t, size_t> chosen_frames(const scene &inputs, const std::optional<std::string> &choice);

} // namespace qz::tool
