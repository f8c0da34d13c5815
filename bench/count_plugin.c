/* A plugin of qemu's user mode that counts the instructions of an emulated 32-bit program by page, and prints
   them when the program ends: the page's address and the count. Debian ships no header for it; what is used
   is declared here. */
#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

struct qemu_plugin_tb;
typedef uint64_t qemu_plugin_id_t;
typedef void (*on_translation)(qemu_plugin_id_t id, struct qemu_plugin_tb *block);
typedef void (*on_exit)(qemu_plugin_id_t id, void *data);

enum { inline_add_u64 = 0 };

extern size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb *block);
extern uint64_t qemu_plugin_tb_vaddr(const struct qemu_plugin_tb *block);
extern void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id, on_translation callback);
extern void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb *block, int operation,
                                                     void *counter, uint64_t added);
extern void qemu_plugin_register_atexit_cb(qemu_plugin_id_t id, on_exit callback, void *data);

#define PAGE_BITS 12
static uint64_t counts[UINT32_C(1) << (32 - PAGE_BITS)];

static void translated(qemu_plugin_id_t id, struct qemu_plugin_tb *block) {
    uint32_t address = (uint32_t)qemu_plugin_tb_vaddr(block);
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, inline_add_u64, &counts[address >> PAGE_BITS],
                                             qemu_plugin_tb_n_insns(block));
}

static void print_counts(qemu_plugin_id_t id, void *data) {
    (void)id;
    (void)data;
    for (size_t page = 0; page < sizeof counts / sizeof *counts; ++page) {
        if (counts[page] != 0) {
            printf("%zx %" PRIu64 "\n", page << PAGE_BITS, counts[page]);
        }
    }
    fflush(stdout); /* qemu ends without doing so */
}

__attribute__((visibility("default"))) int qemu_plugin_version = 1;

__attribute__((visibility("default"))) int qemu_plugin_install(qemu_plugin_id_t id, const void *info,
                                                               int argc, char **argv) {
    (void)info;
    (void)argc;
    (void)argv;
    qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
    qemu_plugin_register_atexit_cb(id, print_counts, NULL);
    return 0;
}
