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

format:
	@git ls-files '*.c' '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf build
