/*
 * A plugin for qemu-user that counts the instructions of the program that is emulated and prints
 * their number when it ends. Compiled for the machine that qemu runs on:
 *
 *     cc -shared -fPIC -O2 -o counter.so instruction_counter.c
 *     qemu-arm -plugin ./counter.so PROGRAM
 *
 * Debian has no package with the header of qemu's plugin interface, so the few functions that are
 * needed stand here. They are version 1 of that interface, which qemu 4.2 to 8.x accept.
 */
#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#define EXPORTED __attribute__((visibility("default")))

typedef uint64_t plugin_id;
struct qemu_plugin_tb; /* a block of instructions that run one after the other */

enum { ADD_U64 = 0 };

size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
void qemu_plugin_register_vcpu_tb_trans_cb(plugin_id id,
                                           void (*translated)(plugin_id, struct qemu_plugin_tb*));
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, int operation,
                                              void* counter, uint64_t amount);
void qemu_plugin_register_atexit_cb(plugin_id id, void (*ended)(plugin_id, void*), void* data);

EXPORTED int qemu_plugin_version = 1;
EXPORTED int qemu_plugin_install(plugin_id id, const void* info, int argc, char** argv);

static uint64_t instructions;

static void on_translated(plugin_id id, struct qemu_plugin_tb* block) {
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, ADD_U64, &instructions,
                                             qemu_plugin_tb_n_insns(block));
}

static void on_end(plugin_id id, void* data) {
    (void)id;
    (void)data;
    fprintf(stderr, "instructions %" PRIu64 "\n", instructions);
}

int qemu_plugin_install(plugin_id id, const void* info, int argc, char** argv) {
    (void)info;
    (void)argc;
    (void)argv;
    qemu_plugin_register_vcpu_tb_trans_cb(id, on_translated);
    qemu_plugin_register_atexit_cb(id, on_end, NULL);
    return 0;
}
