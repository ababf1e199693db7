# Drives the CMake presets; all build logic lives in CMakeLists.txt.
SHELL := /bin/bash
TEST_PRESETS := release asan aarch64
# Seconds each fuzz target runs in `make fuzz`, and in the smoke run of
# `make test`.
FUZZ_SECONDS ?= 60
FUZZ_SMOKE_SECONDS ?= 5
# Frames each of the soak's two handles processes in `make soak`.
SOAK_FRAMES ?= 40000

.PHONY: all deps demo test mutants fuzz soak bench bench-aarch64 format clean

all: demo

deps:
	@scripts/install-deps

DEMO_DIR := build/release/demo

demo: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release
	@build/release/tools/host_example
	@echo
	@build/release/tools/pavona/pavona --preview $(DEMO_DIR)/ samples/*.jpg
	@echo
	@rm -rf $(DEMO_DIR)/clip && mkdir -p $(DEMO_DIR)/clip
	@build/release/tools/pavona/pavona_demo_frames $(DEMO_DIR)/clip \
	  samples/coffee.jpg samples/chelsea.jpg
	@gst-launch-1.0 -q multifilesrc location=$(DEMO_DIR)/clip/frame-%03d.png \
	  caps=image/png,framerate=24/1 ! pngdec ! videoconvert ! \
	  vp8enc deadline=1 target-bitrate=2000000 ! webmmux ! \
	  filesink location=$(DEMO_DIR)/pan-and-cut.webm
	@build/release/tools/pavona/pavona -k 3 --timeline $(DEMO_DIR)/timeline.png \
	  $(DEMO_DIR)/pan-and-cut.webm
	@echo
	@echo "Previews of the palettes: $(DEMO_DIR)/*.png"
	@echo "Palettes over time on $(DEMO_DIR)/pan-and-cut.webm: $(DEMO_DIR)/timeline.png"

test:
	@scripts/install-deps test fuzz
	@failed=(); \
	for p in $(TEST_PRESETS); do \
	  echo "=== $$p: configure and build"; \
	  if cmake --preset $$p >/dev/null && cmake --build --preset $$p; then \
	    echo "=== $$p: tests"; \
	    ctest --preset $$p || failed+=($$p); \
	  else \
	    failed+=($$p); \
	  fi; \
	done; \
	echo "=== tsan: configure, build and the thread suite"; \
	{ cmake --preset tsan >/dev/null && cmake --build --preset tsan && \
	  ctest --preset tsan; } || failed+=(tsan); \
	echo "=== fuzz: configure, build, corpora and a $(FUZZ_SMOKE_SECONDS)s run of each target"; \
	{ cmake --preset fuzz >/dev/null && \
	  cmake --build --preset fuzz && \
	  ctest --test-dir build/fuzz/fuzz --output-on-failure && \
	  fuzz/run.sh build/fuzz $(FUZZ_SMOKE_SECONDS); } || failed+=(fuzz); \
	scripts/test_ratio.py; \
	if [ $${#failed[@]} -ne 0 ]; then echo "FAILED presets: $${failed[*]}"; exit 1; fi; \
	echo "All presets passed: $(TEST_PRESETS) tsan fuzz"

# Plants each fault of scripts/mutants.txt in turn and checks that the
# release suite catches it; MUTANTS=name-part picks some.
mutants:
	@scripts/install-deps test
	@scripts/mutants.py $(MUTANTS)

fuzz:
	@scripts/install-deps fuzz
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz
	@fuzz/run.sh build/fuzz $(FUZZ_SECONDS)

soak:
	@scripts/install-deps test
	@cmake --preset release >/dev/null
	@cmake --build --preset release --target soak_test
	@PAVONA_SOAK_FRAMES=$(SOAK_FRAMES) build/release/tests/soak_test

# Every benchmark, ours beside libyuv's and OpenCV's, repetitions shuffled
# so that all run interleaved in one process; prints one table and the
# targets' ratios. BENCH_ARGS passes more Google Benchmark flags, e.g.
# BENCH_ARGS=--benchmark_filter=resize.
BENCH_REPETITIONS ?= 10
BENCH_MIN_TIME ?= 0.05
bench:
	@scripts/install-deps bench
	@cmake --preset bench >/dev/null
	@cmake --build --preset bench
	@build/bench/bench/pavona_bench \
	  --benchmark_repetitions=$(BENCH_REPETITIONS) \
	  --benchmark_enable_random_interleaving=true \
	  --benchmark_min_time=$(BENCH_MIN_TIME) $(BENCH_ARGS)

# AArch64 instructions a frame and a stage, counted under qemu-aarch64 by
# our TCG plugin, beside Debian's arm64 libyuv and OpenCV; prints one table.
bench-aarch64:
	@scripts/install-deps test
	@bench/aarch64/count.sh

format:
	@git ls-files '*.c' '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf build
