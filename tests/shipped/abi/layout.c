/*
 * Prints what a program that was built with the public headers relies on: the size and alignment of every structure,
 * the offset and size of its fields and of the padding between them, and the value of every constant.
 */
#include <stddef.h>
#include <stdio.h>

#include "qz_isp/qz_isp.h"
#include "qz_log.h"
#include "qz_mkn.h"

/* Where the structure's fields listed so far end. */
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

#define STRUCT(type, fields)                                                                                           \
    {                                                                                                                  \
        typedef type self;                                                                                             \
        typedef struct {                                                                                               \
            char byte;                                                                                                 \
            type behind;                                                                                               \
        } aligned;                                                                                                     \
        printf("%-32s size %6zu, alignment %zu\n", #type, sizeof(self), offsetof(aligned, behind));                    \
        reached = 0;                                                                                                   \
        fields;                                                                                                        \
        print_padding_up_to(sizeof(self));                                                                             \
    }
#define FIELD(name) print_field(#name, offsetof(self, name), sizeof(((const self *)NULL)->name));
#define BLOCK_FIELD(name, id, size, offset) FIELD(name)
#define CONSTANT(name) printf("%-32s %6lu\n", #name, (unsigned long)(name));

int main(void)
{
#include "interface.inc"
    return 0;
}
