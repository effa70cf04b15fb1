# Two commands set everything up on a fresh machine:
#   make run   installs what is missing, builds, and lists the bundled sample image
#   make test  installs what is missing, builds, and runs every test (plain and sanitized)
#   make fuzz-long  fuzzes the engine for FUZZ_SECONDS (default half an hour)

BUILD      ?= build
BUILD_ASAN ?= build-asan
JOBS       ?= 2
# Builds of several work trees on one machine take turns, so that two compilers never share
# the two cores.
LOCK       := flock /tmp/ovrin-build.lock
CMAKE_GEN  := -G Ninja -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache

.PHONY: all deps configure build run test test-plain test-asan fuzz-long bench bench-extract format clean

all: build

deps:
	@scripts/install-deps.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo

configure: deps $(BUILD)/build.ninja

build: configure
	$(LOCK) cmake --build $(BUILD) -j $(JOBS)

run: build
	$(BUILD)/bin/ovrin-cli list $(BUILD)/bin/sample.iso

test-plain: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

$(BUILD_ASAN)/build.ninja:
	cmake -S . -B $(BUILD_ASAN) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DOVRIN_SANITIZE=ON

test-asan: deps $(BUILD_ASAN)/build.ninja
	$(LOCK) cmake --build $(BUILD_ASAN) -j $(JOBS)
	cd $(BUILD_ASAN) && ctest --output-on-failure -j $(JOBS) -LE slow

test: test-plain test-asan

# A long fuzzing run of the engine over the corpus that the short runs of `make test` grew.
FUZZ_SECONDS ?= 1800
fuzz-long: build
	fuzz/run-fuzz.sh $(BUILD)/fuzz/qmz_fuzzer $(FUZZ_SECONDS) $(BUILD)/fuzz-work \
		$(BUILD)/bin/ovrin-sector-image

# The benchmarks run one after the other, never alongside each other or the tests.
bench: build
	bench/list-bench.sh $(BUILD)/bin/ovrin-cli
	bench/extract-bench.sh $(BUILD)/bin/ovrin-cli

bench-extract: build
	bench/extract-bench.sh $(BUILD)/bin/ovrin-cli

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(BUILD_ASAN)
