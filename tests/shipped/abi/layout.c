/*
 * Prints what a program that was built with the public headers relies on: the size and alignment of every structure,
 * the offset and size of its fields and of the padding between them, and the value of every constant.
 */
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "qz_isp/qz_isp.h"
#include "qz_log.h"
#include "qz_mkn.h"

/* The structure being listed, its size, and where its fields listed so far end. */
static const char *listed = "";
static size_t listed_size;
static size_t reached;

static void print_padding_up_to(size_t offset)
{
    if (offset > reached)
        printf("    %-28s %5zu %6zu\n", "(padding)", reached, offset - reached);
}

static void print_field(const char *name, size_t offset, size_t size)
{
    print_padding_up_to(offset);
    printf("    %-28s %5zu %6zu\n", name, offset, size);
    if (offset + size > reached)
        reached = offset + size;
}

static void print_struct(const char *name, size_t size, size_t alignment)
{
    if (strcmp(name, listed) == 0)
        return;
    print_padding_up_to(listed_size);
    printf("%-32s size %6zu, alignment %zu\n", name, size, alignment);
    listed = name;
    listed_size = size;
    reached = 0;
}

#define STRUCT(type, fields)                                                                                           \
    {                                                                                                                  \
        typedef type self;                                                                                             \
        typedef struct {                                                                                               \
            char byte;                                                                                                 \
            type behind;                                                                                               \
        } aligned;                                                                                                     \
        print_struct(#type, sizeof(self), offsetof(aligned, behind));                                                  \
        fields;                                                                                                        \
    }
#define PAYLOAD_FIELD(type, field, reading) STRUCT(type, FIELD(field))
#define FIELD(name) print_field(#name, offsetof(self, name), sizeof(((const self *)NULL)->name));
#define BLOCK_FIELD(name, id, size, offset, payload, padding, family) FIELD(name)
#define CONSTANT(name) printf("%-32s %6lu\n", #name, (unsigned long)(name));
#define MAKERNOTE_NAME(name, number, format, count, content) CONSTANT(ISP_MAKERNOTE_##name)

int main(void)
{
#include "interface.inc"
    return 0;
}
