// One number of a frame's inputs, by the name that options give it: "gain", "frame.size.width", "colour.ccm[4]".
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "desk/base/fields.h"
#include "desk/scene/scene.h"

namespace qz::desk {

// An option that chooses values, for messages: "over gain=1..16".
struct value_option {
    std::string_view option;
    std::string_view text;

    // Of "NAME=VALUE". Fails at others.
    std::pair<std::string_view, std::string_view> name_and_value(std::string_view expected = "NAME=VALUE") const;
    [[noreturn]] void fail(std::string found, std::string expected) const;
};

struct named_input {
    std::string name;
    element type;
    void *place; // in the frame's inputs

    double least() const;
    double most() const;
    bool is_whole() const;

    // Of a text: a number that the input can have, or effects joined with "+". Fails at others.
    double value(const value_option &option, std::string_view text) const;
    void set(double value) const;
};

// The analog gain, with a digital gain of 1.
constexpr std::string_view gain_name = "gain";

// Makes the struct that holds the input first, correcting nothing, where the frame has none. Fails at other names.
named_input find_input(const value_option &option, std::string_view name, frame_inputs &inputs);

} // namespace qz::desk
