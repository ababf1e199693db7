# Drives the CMake presets; all build logic lives in CMakeLists.txt.
SHELL := /bin/bash
TEST_PRESETS := release asan aarch64

.PHONY: all deps demo test bench format clean

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
	@echo "Previews of the palettes: $(DEMO_DIR)/*.png"

test: deps
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
	if [ $${#failed[@]} -ne 0 ]; then echo "FAILED presets: $${failed[*]}"; exit 1; fi; \
	echo "All presets passed: $(TEST_PRESETS)"

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

format:
	@git ls-files '*.c' '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf build
