#include "fuzz/containers.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "qz_isp/tuning_layout.h"

namespace fuzz {
namespace {

constexpr char tag[4] = {'V', 'U', 'X', 'B'};
constexpr size_t container_header = 24;
constexpr size_t record_header = 8;
constexpr uint16_t first_set_container = ISP_SET_CONTAINER_BASE + 1;
constexpr uint16_t last_set_container = ISP_SET_CONTAINER_BASE + 8; // each index costs the library 3 tuning sets

std::vector<uint16_t> list_known_ids()
{
    struct in_families {
        uint8_t in_320, in_768, in_1536;
    };
#define FUZZ_OFFSETS(name, slot, in_320, in_768, in_1536, layout, start, part, size) {in_320, in_768, in_1536},
#define FUZZ_DROPPED(offset) {offset, offset, offset},
    constexpr in_families offsets[] = {ISP_TUNING_RECORDS(FUZZ_OFFSETS) ISP_TUNING_DROPPED_IN_320(FUZZ_DROPPED)};

    std::vector<uint16_t> ids = {ISP_RULES_ID};
    for (const in_families &offset : offsets) {
#define FUZZ_ID(family, first, set)                                                                                    \
    if (offset.in_##family != 0)                                                                                       \
        ids.push_back(static_cast<uint16_t>((first) + offset.in_##family));
        ISP_TUNING_GROUPS(FUZZ_ID)
    }
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
