# Two commands set everything up on a fresh machine:
#   make run   installs what building and running need, builds, and shows the sample image in
#              the viewer's window
#   make test  installs the test tools besides, checks the formatting, builds, and runs every
#              test (plain and sanitized)
#   make fuzz-long  fuzzes the engine for FUZZ_SECONDS (default half an hour)
#   make install    installs the program under PREFIX (default /usr/local), as the desktop
#                   finds it: command, menu entry, icons, file types
#   make package    builds the Debian package, ovrin_<version>_<arch>.deb in the build folder

BUILD      ?= build
BUILD_ASAN ?= build-asan
JOBS       ?= 2
# Builds of several work trees on one machine take turns, so that two compilers never share
# the two cores.
LOCK       := flock /tmp/ovrin-build.lock
CMAKE_GEN  := -G Ninja -DOVRIN_WERROR=ON -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache

.PHONY: all deps configure build run test test-plain test-asan format-check fuzz-long bench \
	bench-extract format clean install package

all: build

# What a command installs and whether its build holds the tests: `make run` needs neither the
# test tools nor the tests; the test and benchmark targets switch both on for everything they
# build first.
DEPS    ?= run
TESTING ?= OFF
test test-plain test-asan format-check format fuzz-long package: DEPS = test
test test-plain test-asan fuzz-long: TESTING = ON
bench bench-extract: DEPS = bench
bench bench-extract: TESTING = ON

deps:
	@scripts/install-deps.sh $(DEPS)

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=$(TESTING)

# A build folder made by `make run` is switched to hold the tests when a test target needs them.
configure: deps $(BUILD)/build.ninja
	@if [ "$(TESTING)" = ON ] && ! grep -qx 'BUILD_TESTING:BOOL=ON' $(BUILD)/CMakeCache.txt; then \
		cmake -S . -B $(BUILD) -DBUILD_TESTING=ON; \
	fi

build: configure
	$(LOCK) cmake --build $(BUILD) -j $(JOBS)

run: build
	$(BUILD)/bin/ovrin $(BUILD)/bin/sample.iso

PREFIX ?= /usr/local
install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

# dpkg-shlibdeps (dpkg-dev) reads the package's dependencies off its programs.
package: build
	$(LOCK) cmake --build $(BUILD) --target package

# clang-format sees the C++ sources alone: it takes any other file for C++ too, and would
# reflow the comments and names of the CMake files.
FORMATTED := git ls-files '*.cpp' '*.h'

format-check: deps
	$(FORMATTED) | xargs clang-format --dry-run --Werror

test-plain: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

$(BUILD_ASAN)/build.ninja:
	cmake -S . -B $(BUILD_ASAN) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DOVRIN_SANITIZE=ON \
		-DBUILD_TESTING=ON

test-asan: deps $(BUILD_ASAN)/build.ninja
	$(LOCK) cmake --build $(BUILD_ASAN) -j $(JOBS)
	cd $(BUILD_ASAN) && ctest --output-on-failure -j $(JOBS) -LE slow

test: format-check test-plain test-asan

# A long fuzzing run of the engine over the corpus that the short runs of `make test` grew.
FUZZ_SECONDS ?= 1800
fuzz-long: build
	fuzz/run-fuzz.sh $(BUILD)/fuzz/qmz_fuzzer $(FUZZ_SECONDS) $(BUILD)/fuzz-work \
		$(BUILD)/bin/ovrin-sector-image

# The benchmarks run one after the other, never alongside each other or the tests.
bench: build
	bench/list-bench.sh $(BUILD)/bin/ovrin-cli
	bench/extract-bench.sh $(BUILD)/bin/ovrin-cli
	$(BUILD)/bin/ovrin-dialog-bench
	bench/window-bench.sh $(BUILD)/bin

bench-extract: build
	bench/extract-bench.sh $(BUILD)/bin/ovrin-cli

format: deps
	$(FORMATTED) | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(BUILD_ASAN)
