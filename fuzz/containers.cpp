#include "containers.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace fuzz {
namespace {

constexpr char tag[4] = {'V', 'U', 'X', 'B'};
constexpr size_t container_header = 24;
constexpr size_t record_header = 8;
constexpr uint16_t first_set_container = 64513;
constexpr uint16_t last_set_container = 64520; // each index costs the library 3 tuning sets
constexpr uint16_t rules = 709;

std::vector<uint16_t> list_known_ids()
{
    constexpr uint16_t offsets_320[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 20};
    constexpr uint16_t set_distance = 64;
    std::vector<uint16_t> ids;
    for (uint16_t set = 0; set < 3; ++set) {
        for (const uint16_t offset : offsets_320)
            ids.push_back(static_cast<uint16_t>(320 + set * set_distance + offset));
        for (uint16_t offset = 1; offset <= 16; ++offset)
            for (const int base : {768, 1536})
                ids.push_back(static_cast<uint16_t>(base + set * set_distance + offset));
    }
    ids.push_back(rules);
    for (uint16_t id = first_set_container; id <= last_set_container; ++id)
        ids.push_back(id);
    std::ranges::sort(ids);
    return ids;
}

uint16_t known_id(uint16_t id)
{
    static const std::vector<uint16_t> ids = list_known_ids();
    return std::ranges::binary_search(ids, id) ? id : ids[id % ids.size()];
}

// Any size that is no record's becomes one; not a large one, so that others follow.
uint32_t fitting_size(uint32_t size, size_t room)
{
    constexpr size_t enough = 1500; // bytes: one row of the longest kind
    if (size >= record_header && size <= room)
        return size;
    return static_cast<uint32_t>(record_header + size % (std::min(room, enough) - record_header + 1));
}

std::span<uint8_t> nested_list(std::span<uint8_t> record)
{
    std::span<uint8_t> list = record.subspan(record_header);
    if (list.size() < sizeof tag || std::memcmp(list.data(), tag, sizeof tag) != 0)
        return list;
    if (list.size() >= container_header)
        return list.subspan(container_header);
    list[0] = 0;
    return list;
}

} // namespace

void repair(std::span<uint8_t> container)
{
    if (container.size() < container_header)
        return;
    std::memcpy(container.data(), tag, sizeof tag);
    std::vector<std::span<uint8_t>> lists = {container.subspan(container_header)};
    while (!lists.empty()) {
        std::span<uint8_t> list = lists.back();
        lists.pop_back();
        while (list.size() > record_header) {
            uint32_t size = 0;
            uint16_t id = 0;
            std::memcpy(&size, list.data(), sizeof size);
            std::memcpy(&id, list.data() + 6, sizeof id);
            size = fitting_size(size, list.size());
            id = known_id(id);
            std::memcpy(list.data(), &size, sizeof size);
            std::memcpy(list.data() + 6, &id, sizeof id);
            if (id >= first_set_container)
                lists.push_back(nested_list(list.first(size)));
            list = list.subspan(size);
        }
    }
}

} // namespace fuzz
