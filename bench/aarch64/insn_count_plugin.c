/* A QEMU TCG plugin that counts the guest instructions executed between the
 * start and stop markers of count_marker.h, and prints each marked region
 * and their mean, minimum and maximum when the guest exits: to the file
 * named by the argument out=PATH, else to standard error (qemu_plugin_outs
 * would print only under -d plugin).
 *
 * Debian ships QEMU without its plugin header, so the few declarations used
 * here are made below, as plugin API version 1 defines them. */
#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "bench/aarch64/count_marker.h"

#define PLUGIN_EXPORT __attribute__((visibility("default")))

typedef uint64_t qemu_plugin_id_t;
typedef struct qemu_info_t qemu_info_t;
struct qemu_plugin_tb;
enum qemu_plugin_op { QEMU_PLUGIN_INLINE_ADD_U64 };

typedef void (*qemu_plugin_vcpu_tb_trans_cb_t)(qemu_plugin_id_t id,
                                               struct qemu_plugin_tb* tb);
typedef void (*qemu_plugin_vcpu_syscall_cb_t)(
    qemu_plugin_id_t id, unsigned int vcpu_index, int64_t num, uint64_t a1,
    uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, uint64_t a6,
    uint64_t a7, uint64_t a8);
typedef void (*qemu_plugin_udata_cb_t)(qemu_plugin_id_t id, void* userdata);

void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           qemu_plugin_vcpu_tb_trans_cb_t cb);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* tb);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* tb,
                                              enum qemu_plugin_op op, void* ptr,
                                              uint64_t imm);
void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t id,
                                          qemu_plugin_vcpu_syscall_cb_t cb);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t id,
                                    qemu_plugin_udata_cb_t cb, void* userdata);

PLUGIN_EXPORT int qemu_plugin_version = 1;

/* Every executed instruction, counted a translated block at a time by an
 * add the block itself performs: no call out of generated code. A block
 * ends at each system call, so a marker always closes its block. */
static uint64_t executed;
static uint64_t regionStart;
static int inRegion;
static uint64_t* regions;
static size_t regionCount;
static size_t regionCapacity;
static FILE* report;

static void onTranslate(qemu_plugin_id_t id, struct qemu_plugin_tb* tb) {
  (void)id;
  qemu_plugin_register_vcpu_tb_exec_inline(
      tb, QEMU_PLUGIN_INLINE_ADD_U64, &executed, qemu_plugin_tb_n_insns(tb));
}

static void keep(uint64_t count) {
  if (regionCount == regionCapacity) {
    regionCapacity = regionCapacity ? 2 * regionCapacity : 64;
    regions = realloc(regions, regionCapacity * sizeof *regions);
    if (!regions) abort();
  }
  regions[regionCount++] = count;
}

static void onSyscall(qemu_plugin_id_t id, unsigned int vcpu, int64_t num,
                      uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4,
                      uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8) {
  (void)id, (void)vcpu, (void)a2, (void)a3, (void)a4, (void)a5, (void)a6,
      (void)a7, (void)a8;
  if (num != PAVONA_COUNT_SYSCALL) return;
  if (a1 == PAVONA_COUNT_START) {
    regionStart = executed;
    inRegion = 1;
  } else if (inRegion) {
    keep(executed - regionStart);
    inRegion = 0;
  }
}

static void onExit(qemu_plugin_id_t id, void* userdata) {
  (void)id, (void)userdata;
  FILE* out = report ? report : stderr;
  uint64_t sum = 0, low = UINT64_MAX, high = 0;
  for (size_t i = 0; i < regionCount; ++i) {
    fprintf(out, "insn-count: region %zu: %" PRIu64 "\n", i, regions[i]);
    sum += regions[i];
    if (regions[i] < low) low = regions[i];
    if (regions[i] > high) high = regions[i];
  }
  if (regionCount == 0) {
    fputs("insn-count: no marked region\n", out);
  } else {
    fprintf(out,
            "insn-count: regions %zu mean %.1f min %" PRIu64 " max %" PRIu64
            "\n",
            regionCount, (double)sum / (double)regionCount, low, high);
  }
  free(regions);
  if (report) fclose(report);
}

PLUGIN_EXPORT int qemu_plugin_install(qemu_plugin_id_t id,
                                      const qemu_info_t* info, int argc,
                                      char** argv) {
  (void)info;
  for (int i = 0; i < argc; ++i) {
    if (strncmp(argv[i], "out=", 4) != 0) continue;
    report = fopen(argv[i] + 4, "w");
    if (!report) return -1;
  }
  qemu_plugin_register_vcpu_tb_trans_cb(id, onTranslate);
  qemu_plugin_register_vcpu_syscall_cb(id, onSyscall);
  qemu_plugin_register_atexit_cb(id, onExit, NULL);
  return 0;
}
