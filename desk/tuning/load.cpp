#include "desk/tuning/load.h"

#include <algorithm>

#include "desk/base/error.h"
#include "desk/tuning/container.h"
#include "desk/tuning/pack.h"

namespace qz::desk {

bool is_container(byte_view bytes)
{
    const auto first = std::ranges::find_if_not(bytes, [](uint8_t byte) { return byte <= ' '; });
    return first == bytes.end() || *first != '{';
}

byte_buffer container_bytes(const std::string &file, byte_buffer bytes)
{
    return is_container(bytes) ? std::move(bytes) : pack_container(file, text_of(bytes));
}

byte_buffer usable_container(const std::string &file, byte_buffer bytes)
{
    byte_buffer container = container_bytes(file, std::move(bytes));
    for (const tuning_problem &problem : read_container(file, container).problems) {
        if (problem.error)
            fail({file, "", problem_text(problem), ""});
    }
    return container;
}

} // namespace qz::desk
