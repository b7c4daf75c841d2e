#include "qz_mkn.h"

#include <stdlib.h>
#include <string.h>

namespace {

// A record and, behind it in the same allocation, its elements and its key.
struct node {
    qz_mkn_record record;
    node *next;
};

size_t element_width(uint32_t format)
{
    switch (format) {
    case QZ_MKN_I8:
    case QZ_MKN_U8:
    case QZ_MKN_TEXT:
        return 1;
    case QZ_MKN_I16:
    case QZ_MKN_U16:
        return 2;
    case QZ_MKN_I32:
    case QZ_MKN_U32:
        return 4;
    default:
        return 0;
    }
}

// Null when memory runs out or the sizes cannot be expressed.
node *make_node(uint32_t format, uint32_t name, const void *data, uint32_t count, const char *key)
{
    const uint64_t size = static_cast<uint64_t>(element_width(format)) * count;
    const size_t key_size = key != nullptr ? strlen(key) + 1 : 0;
    const uint64_t total = sizeof(node) + size + key_size;
    if (size > UINT32_MAX || total > SIZE_MAX)
        return nullptr;

    auto *made = static_cast<node *>(malloc(static_cast<size_t>(total)));
    if (made == nullptr)
        return nullptr;
    auto *bytes = reinterpret_cast<char *>(made + 1);
    made->next = nullptr;
    made->record = {format, name, count, static_cast<uint32_t>(size), nullptr, nullptr};
    if (size > 0)
        made->record.data = memcpy(bytes, data, static_cast<size_t>(size));
    if (key != nullptr)
        made->record.key = static_cast<const char *>(memcpy(bytes + size, key, key_size));
    return made;
}

} // namespace

struct qz_mkn {
    node *first;
    node *last;
    uint32_t count;
    uint32_t dropped;
};

qz_mkn *qz_mkn_create(void)
{
    return static_cast<qz_mkn *>(calloc(1, sizeof(qz_mkn)));
}

void qz_mkn_destroy(qz_mkn *mkn)
{
    if (mkn == nullptr)
        return;
    for (node *current = mkn->first; current != nullptr;) {
        node *next = current->next;
        free(current);
        current = next;
    }
    free(mkn);
}

bool qz_mkn_add_record(qz_mkn *mkn, uint32_t format, uint32_t name, const void *data, uint32_t count, const char *key)
{
    if (mkn == nullptr)
        return false;
    const bool known = element_width(format) != 0 && (data != nullptr || count == 0);
    node *made = known ? make_node(format, name, data, count, key) : nullptr;
    if (made == nullptr) {
        ++mkn->dropped;
        return false;
    }
    if (mkn->last != nullptr)
        mkn->last->next = made;
    else
        mkn->first = made;
    mkn->last = made;
    ++mkn->count;
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
    const node *current = mkn->first;
    while (index-- > 0)
        current = current->next;
    *record = current->record;
    return true;
}

bool qz_mkn_is_valid(const isp_blob *blob, uint32_t tag)
{
    return blob != nullptr && blob->data != nullptr && blob->size >= QZ_MKN_HEADER_SIZE &&
           memcmp(blob->data, &tag, sizeof tag) == 0;
}
