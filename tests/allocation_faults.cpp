#include "tests/allocation_faults.h"

#include <cstring>

#include <malloc.h>

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__real_realloc(void *block, size_t size);
void __real_free(void *block);
}

namespace {

long failing = faults::never;
bool and_later = false;
long asked = 0;
long live = 0;

bool fails_now()
{
    const long number = asked++;
    return failing != faults::never && (number == failing || (and_later && number > failing));
}

// What the allocator leaves behind the bytes asked for is filled, so that reading it shows.
void *counted(void *block, size_t size)
{
    if (block == nullptr)
        return nullptr;
    ++live;
    std::memset(static_cast<char *>(block) + size, 0xa5, malloc_usable_size(block) - size);
    return block;
}

} // namespace

// Visible, because the sanitizers' linker looks for them on behalf of the shared libraries too.
#pragma GCC visibility push(default)
extern "C" {

void *__wrap_malloc(size_t size)
{
    return fails_now() ? nullptr : counted(__real_malloc(size), size);
}

void *__wrap_calloc(size_t count, size_t size)
{
    return fails_now() ? nullptr : counted(__real_calloc(count, size), count * size);
}

void *__wrap_realloc(void *block, size_t size)
{
    if (fails_now())
        return nullptr;
    live -= block != nullptr;
    return counted(__real_realloc(block, size), size);
}

void __wrap_free(void *block)
{
    live -= block != nullptr;
    __real_free(block);
}
}
#pragma GCC visibility pop

namespace faults {

void fail_allocation(long n, bool later_too)
{
    failing = n;
    and_later = later_too;
    asked = 0;
}

long allocations()
{
    return asked;
}

long live_blocks()
{
    return live;
}

} // namespace faults
