/* A plugin of qemu's user mode: when the program ends it writes each block of code that ran, as how often and its bytes
   in hexadecimal, to standard error. Debian does not package the header of the interface, so its part that is used here
   is declared (version 1). */
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
struct qemu_plugin_insn;

void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           void (*call)(qemu_plugin_id_t, struct qemu_plugin_tb *));
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb *tb, int add_u64, void *counter, uint64_t value);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t id, void (*call)(qemu_plugin_id_t, void *), void *data);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb *tb);
struct qemu_plugin_insn *qemu_plugin_tb_get_insn(const struct qemu_plugin_tb *tb, size_t index);
const void *qemu_plugin_insn_data(const struct qemu_plugin_insn *insn);
size_t qemu_plugin_insn_size(const struct qemu_plugin_insn *insn);

#define EXPORT __attribute__((visibility("default")))
EXPORT int qemu_plugin_version = 1;

/* One for each translation: the same code may be translated again. */
struct block {
    struct block *next;
    uint64_t count;
    size_t size;
    uint8_t bytes[];
};

static struct block *blocks;

static void translated(qemu_plugin_id_t id, struct qemu_plugin_tb *tb)
{
    (void)id;
    const size_t instructions = qemu_plugin_tb_n_insns(tb);
    size_t size = 0;
    for (size_t i = 0; i < instructions; ++i)
        size += qemu_plugin_insn_size(qemu_plugin_tb_get_insn(tb, i));
    struct block *const made = calloc(1, sizeof *made + size);
    if (made == NULL)
        abort();
    for (size_t i = 0; i < instructions; ++i) {
        const struct qemu_plugin_insn *const insn = qemu_plugin_tb_get_insn(tb, i);
        const uint8_t *const bytes = qemu_plugin_insn_data(insn);
        for (size_t k = 0; k < qemu_plugin_insn_size(insn); ++k)
            made->bytes[made->size++] = bytes[k];
    }
    made->next = blocks;
    blocks = made;
    qemu_plugin_register_vcpu_tb_exec_inline(tb, 0, &made->count, 1);
}

static void ended(qemu_plugin_id_t id, void *data)
{
    (void)id;
    (void)data;
    for (const struct block *one = blocks; one != NULL; one = one->next) {
        fprintf(stderr, "block %llu ", (unsigned long long)one->count);
        for (size_t k = 0; k < one->size; ++k)
            fprintf(stderr, "%02x", one->bytes[k]);
        fputc('\n', stderr);
    }
}

EXPORT int qemu_plugin_install(qemu_plugin_id_t id, const void *info, int argc, char **argv)
{
    (void)info;
    (void)argc;
    (void)argv;
    qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
    qemu_plugin_register_atexit_cb(id, ended, NULL);
    return 0;
}
