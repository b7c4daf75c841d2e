#include "desk/diff/compared_file.h"

#include <utility>

#include "desk/base/json_node.h"
#include "desk/diff/record_parts.h"
#include "desk/diff/scene_parts.h"
#include "desk/diff/tuning_parts.h"
#include "desk/record/dump.h"
#include "desk/tuning/load.h"

namespace qz::desk {

namespace {

bool is_scene(const std::string &name, byte_view bytes)
{
    return read_document(name, text_of(bytes)).find("frames").has_value();
}

} // namespace

compared_file read_compared(std::string name, byte_buffer bytes)
{
    if (is_record_dump(bytes)) {
        const std::vector<record_snapshot> records = read_records(name, bytes);
        byte_buffer used;
        for (const record_snapshot &each : records)
            append_record(used, each);
        return {std::move(name), "a record dump", std::move(used), record_parts(records)};
    }
    if (!is_container(bytes) && is_scene(name, bytes)) {
        const scene read = read_scene(name, text_of(bytes));
        return {std::move(name), "a scene", {}, scene_parts(read)};
    }
    byte_buffer container = container_bytes(name, std::move(bytes));
    std::vector<file_part> parts = tuning_parts(read_container(name, container));
    return {std::move(name), "a tuning", std::move(container), std::move(parts)};
}

} // namespace qz::desk
