// One number that options choose by its name and give values.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "desk/base/fields.h"

namespace qz::desk {

// An option that chooses values, for messages: "over gain=1..16".
struct value_option {
    std::string_view option;
    std::string_view text;

    // Of "NAME=VALUE". Fails at others.
    std::pair<std::string_view, std::string_view> name_and_value(std::string_view expected = "NAME=VALUE") const;
    [[noreturn]] void fail(std::string found, std::string expected) const;
};

// Words that stand for a number.
struct value_words {
    std::optional<double> (*number)(std::string_view text);
    std::string (*expected)();
};

// "an integer from 0 to 255"
std::string values_of(element type);

// A value, or those of a list, as lists of names tell it.
struct value_names {
    std::string first;
    std::string last; // empty for a value alone
    std::string values;
};

struct named_value {
    std::string name;
    element type;
    void *place;                        // of any alignment
    const value_words *words = nullptr; // null: digits only

    double least() const;
    double most() const;
    bool is_whole() const;

    // Of a text: a number that the type has, or words. Fails at others.
    double read(const value_option &option, std::string_view text) const;
    void set(double value) const;
    double get() const;
};

} // namespace qz::desk
