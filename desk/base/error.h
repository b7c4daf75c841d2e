// What went wrong, and the one way in which this library gives up.
#pragma once

#include <optional>
#include <string>

namespace qz::desk {

struct error {
    std::optional<std::string> file; // as messages call it; nothing where the caller chose what there is not
    std::string place;               // line and column, byte offset, field path, or the choice; empty: the whole
    std::string found;
    std::string expected; // empty where `found` says it all
};

// "scene.json: frames[1].hue: found 200, expected an integer from -128 to 127"
std::string error_text(const error &what);

// Throws the error. Where the compiler has no exceptions, the host has to define qz_isp_desk_failed(), which gets the
// text and does not return.
[[noreturn]] void fail(const error &what);

} // namespace qz::desk

#ifndef __cpp_exceptions
extern "C" [[noreturn]] void qz_isp_desk_failed(const char *text);
#endif
