// The copy of the camera-module characterisation record.
#include <cstdlib>
#include <cstring>

#include "qz_isp/tuning.h"

namespace {

// Zero-filled; null when memory runs out or the size cannot be expressed.
template <typename T>
T *copy_of(const T *source, size_t count, size_t size)
{
    void *copy = std::calloc(count, size);
    if (copy != nullptr && count > 0)
        std::memcpy(copy, source, count * size);
    return static_cast<T *>(copy);
}

static_assert(sizeof(isp_sensor_description) == 16);
static_assert(sizeof(isp_entry_table_header) == 12);

} // namespace

void copy_cmc(isp_cmc *destination, const isp_cmc *source)
{
    constexpr size_t entry_size = 16;
    if (source == nullptr)
        return;
    if (source->sensor_description != nullptr)
        destination->sensor_description = copy_of(source->sensor_description, 1, sizeof(isp_sensor_description));
    if (source->entry_table_header == nullptr)
        return;
    destination->entry_table_header = copy_of(source->entry_table_header, 1, sizeof(isp_entry_table_header));
    if (destination->entry_table_header == nullptr)
        return;
    const uint32_t count = destination->entry_table_header->entry_count;
    if (source->entry_table != nullptr || count == 0)
        destination->entry_table = copy_of(source->entry_table, count, entry_size);
}

void cmc_deinit(isp_cmc *cmc)
{
    if (cmc == nullptr)
        return;
    std::free(cmc->sensor_description);
    std::free(cmc->entry_table);
    std::free(cmc->entry_table_header);
    cmc->sensor_description = nullptr;
    cmc->entry_table = nullptr;
    cmc->entry_table_header = nullptr;
}
