#include "qz_mkn.h"

#include <stdlib.h>
#include <string.h>

namespace {

size_t element_width(uint32_t format)
{
    switch (format) {
    case QZ_MKN_I8:
    case QZ_MKN_U8:
    case QZ_MKN_TEXT: return 1;
    case QZ_MKN_I16:
    case QZ_MKN_U16: return 2;
    case QZ_MKN_I32:
    case QZ_MKN_U32: return 4;
    default: return 0;
    }
}

// A record and, behind it in the same allocation, its elements and its key. Null when memory runs out or the sizes
// cannot be expressed.
qz_mkn_record *make_record(uint32_t format, uint32_t name, const void *data, uint32_t count, const char *key)
{
    const uint64_t size = static_cast<uint64_t>(element_width(format)) * count;
    const size_t key_size = key != nullptr ? strlen(key) + 1 : 0;
    const uint64_t total = sizeof(qz_mkn_record) + size + key_size;
    if (size > UINT32_MAX || total > SIZE_MAX)
        return nullptr;

    auto *made = static_cast<qz_mkn_record *>(malloc(static_cast<size_t>(total)));
    if (made == nullptr)
        return nullptr;
    auto *bytes = reinterpret_cast<char *>(made + 1);
    *made = {format, name, count, static_cast<uint32_t>(size), nullptr, nullptr};
    if (size > 0)
        made->data = memcpy(bytes, data, static_cast<size_t>(size));
    if (key != nullptr)
        made->key = static_cast<const char *>(memcpy(bytes + size, key, key_size));
    return made;
}

size_t key_size_of(const qz_mkn_record &record)
{
    return record.key != nullptr ? strlen(record.key) : 0;
}

// Elements and key, up to a multiple of 4.
size_t padded_size(const qz_mkn_record &record)
{
    return (record.size + key_size_of(record) + 3) & ~size_t{3};
}

uint8_t *append(uint8_t *to, const void *from, size_t size)
{
    return size > 0 ? static_cast<uint8_t *>(memcpy(to, from, size)) + size : to;
}

} // namespace

struct qz_mkn {
    qz_mkn_record **records;
    size_t capacity;
    uint32_t count;
    uint32_t dropped;

    // Makes room for one more record; false when memory runs out.
    bool reserve()
    {
        if (count < capacity)
            return true;
        constexpr size_t first_capacity = 64;
        // Cannot wrap: a record takes far more of the memory than its place here.
        const size_t grown = capacity > 0 ? capacity * 2 : first_capacity;
        void *block = realloc(records, grown * sizeof *records);
        if (block == nullptr)
            return false;
        records = static_cast<qz_mkn_record **>(block);
        capacity = grown;
        return true;
    }
};

qz_mkn *qz_mkn_create(void)
{
    return static_cast<qz_mkn *>(calloc(1, sizeof(qz_mkn)));
}

void qz_mkn_clear(qz_mkn *mkn)
{
    for (uint32_t i = 0; i < mkn->count; ++i)
        free(mkn->records[i]);
    mkn->count = 0;
    mkn->dropped = 0;
}

void qz_mkn_destroy(qz_mkn *mkn)
{
    if (mkn == nullptr)
        return;
    qz_mkn_clear(mkn);
    free(mkn->records);
    free(mkn);
}

bool qz_mkn_add_record(qz_mkn *mkn, uint32_t format, uint32_t name, const void *data, uint32_t count, const char *key)
{
    if (mkn == nullptr)
        return false;
    const bool known = element_width(format) != 0 && (data != nullptr || count == 0);
    qz_mkn_record *made = known && mkn->reserve() ? make_record(format, name, data, count, key) : nullptr;
    if (made == nullptr) {
        ++mkn->dropped;
        return false;
    }
    mkn->records[mkn->count++] = made;
    return true;
}

uint32_t qz_mkn_record_count(const qz_mkn *mkn)
{
    return mkn->count;
}

uint32_t qz_mkn_dropped_count(const qz_mkn *mkn)
{
    return mkn->dropped;
}

bool qz_mkn_get_record(const qz_mkn *mkn, uint32_t index, qz_mkn_record *record)
{
    if (index >= mkn->count)
        return false;
    *record = *mkn->records[index];
    return true;
}

size_t qz_mkn_saved_size(const qz_mkn *mkn)
{
    size_t size = sizeof(qz_mkn_saved_header);
    for (uint32_t i = 0; i < mkn->count; ++i)
        size += sizeof(qz_mkn_saved_record) + padded_size(*mkn->records[i]);
    return size;
}

void qz_mkn_save(const qz_mkn *mkn, void *bytes)
{
    const qz_mkn_saved_header header = {QZ_MKN_SAVED_TAG, QZ_MKN_SAVED_VERSION, mkn->count, mkn->dropped, {0, 0}};
    uint8_t *next = append(static_cast<uint8_t *>(bytes), &header, sizeof header);
    for (uint32_t i = 0; i < mkn->count; ++i) {
        const qz_mkn_record &record = *mkn->records[i];
        const auto key_size = static_cast<uint32_t>(key_size_of(record));
        const qz_mkn_saved_record saved = {record.format, record.name, record.count, key_size};
        next = append(next, &saved, sizeof saved);
        uint8_t *end = append(append(next, record.data, record.size), record.key, key_size);
        next += padded_size(record);
        memset(end, 0, static_cast<size_t>(next - end));
    }
}

bool qz_mkn_is_valid(const isp_blob *blob, uint32_t tag)
{
    return blob != nullptr && blob->data != nullptr && blob->size >= QZ_MKN_HEADER_SIZE &&
           memcmp(blob->data, &tag, sizeof tag) == 0;
}
