/* Allocation that fails, to be loaded before the C library's: the call FAILING_CALL, from 0, and where FAILING_ON is
 * set all after it. Of calls that C++ makes through its operators the same. */
#include <errno.h>
#include <stddef.h>
#include <stdlib.h>

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);

static int fails(void)
{
    static long made;
    const char *call = getenv("FAILING_CALL");
    const long number = __atomic_fetch_add(&made, 1, __ATOMIC_RELAXED);
    if (call == NULL || number < atol(call) || (number > atol(call) && getenv("FAILING_ON") == NULL))
        return 0;
    errno = ENOMEM;
    return 1;
}

void *malloc(size_t size)
{
    return fails() ? NULL : __libc_malloc(size);
}

void *calloc(size_t count, size_t size)
{
    return fails() ? NULL : __libc_calloc(count, size);
}

void *realloc(void *block, size_t size)
{
    return fails() ? NULL : __libc_realloc(block, size);
}
