# A thin front onto CMake and CTest. CMakePresets.json has the presets, out/<preset> the build trees.
PREFIX ?= /usr/local
# OFF leaves out the second build of the library, for processors with AVX2 and FMA.
ZOR_V3 ?= ON

.PHONY: demo check check-v3 sanitize bench accuracy fuzz install clean format

# Builds the program and the examples and shows what they do.
demo:
	@scripts/build.sh release tools/zor/all examples/all
	@examples/demo.sh out/release

# Builds everything and runs all tests.
check:
	@scripts/check.sh release

# Runs the tests that see the library from outside with its second build, for processors with AVX2 and FMA.
check-v3: check
	@scripts/check_v3.sh

# All tests under the address, leak and undefined behaviour sanitizers, then the thread tests under the thread sanitizer.
sanitize:
	@scripts/check.sh asan-ubsan
	@scripts/check.sh tsan

# Runs the benchmarks; `make bench FILTER=Kriging` only those that match.
bench:
	@scripts/build.sh release bench/all
	@for program in $$(find out/release/bench -name '*_bench' -type f | sort); do $$program --benchmark_filter='$(FILTER)'; done

# Tries published functions and rewrites the table of docs/accuracy.md; `make accuracy FILTER=Branin` only shows its rows.
accuracy:
	@scripts/build.sh release bench/accuracy/all
	@out/release/bench/accuracy/accuracy $(if $(FILTER),'$(FILTER)',--write docs/accuracy.md)

# Runs each fuzz target for a minute; `make fuzz SECONDS=600` for longer.
fuzz:
	@scripts/fuzz.sh $(SECONDS)

# Installs to PREFIX (below DESTDIR if set), with a second build of the library for processors with AVX2 and FMA.
install:
	@scripts/build.sh release
	@cmake --install out/release --prefix $(PREFIX)
ifneq ($(ZOR_V3),OFF)
	@scripts/build.sh release-v3
	@cmake --install out/release-v3 --prefix $(PREFIX)
endif
	@if [ -z "$(DESTDIR)" ] && [ "$$(id -u)" = 0 ]; then ldconfig; fi

clean:
	@rm -rf out

# Lays the sources out by .clang-format.
format:
	@git ls-files '*.h' '*.c' '*.cpp' '*.inc' | xargs clang-format -i
