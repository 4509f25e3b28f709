# Short commands for the build, whose configurations are in CMakePresets.json. Each target installs what it needs.
BUILD_PACKAGES = g++ make cmake ninja-build libsodium-dev rapidjson-dev zlib1g-dev
TEST_PACKAGES = libgtest-dev pkg-config python3 zsh fish acpica-tools pciutils cpuid dmidecode
WINDOWS_PACKAGES = g++-mingw-w64-x86-64-posix libz-mingw-w64-dev
METRICS_PACKAGES = curl
ANSIBLE_PACKAGES = ansible-core python3
REPORT_PACKAGES = chromium chromium-driver python3-selenium poppler-utils pci.ids
ARM64_PACKAGES = g++-aarch64-linux-gnu qemu-user-static
ARM64_LIBRARIES = libsodium-dev zlib1g-dev
# What the packages depend on.
ARM64_SHARED_LIBRARIES = libc6 libgcc-s1 libstdc++6 zlib1g
WINE_PACKAGES = wine googletest python3
BENCH_PACKAGES = libbenchmark-dev valgrind strace time python3
FUZZ_PACKAGES = clang
DEB_PACKAGES = build-essential debhelper dh-python git lintian python3
ZIP_PACKAGES = zip
STYLE_PACKAGES = clang-format clang-tidy

INSTALL = cmake/install-packages.sh
DMI = /sys/firmware/dmi/tables/DMI
# Uses sudo if only root can read the table.
AS_READER = $(shell [ "$$(id -u)" = 0 ] || [ ! -e $(DMI) ] || [ -r $(DMI) ] || echo sudo)

.PHONY: build run test test-long test-machine test-sarif test-report test-metrics test-ansible test-fleet \
	test-fleet-engines test-fleet-million fleet-program stub asan tsan coverage arm64 test-arm64 windows test-windows \
	install deb deb-arm64 zip bench guard guard-update fuzz format lint lint-long hooks clean
.DEFAULT_GOAL := build

build:
	@$(INSTALL) $(BUILD_PACKAGES)
	@cmake --preset release -DQUORLIN_TESTS=OFF >/dev/null
	@cmake --build --preset release

run: build
	@$(AS_READER) build/release/bin/quorlin --sample-if-none

test:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES)
	@cmake --preset release -DQUORLIN_TESTS=ON >/dev/null
	@cmake --build --preset release
	@Tests/run_tests.py release

# Tests that take too long for every change.
test-long: test zip deb-arm64
	@$(MAKE) lint-long
	@Tests/reproducible-windows.sh
	@Tests/check-deb.sh build/deb-arm64 build/release/bin/quorlin
	@QUORLIN_LONG=1 build/release/bin/quorlinTest --gtest_filter='WorstTables.*'

# Boots Linux guests with an SMBIOS table in an emulator, and reads it there by both access methods.
test-machine:
	@Tests/Machine/run.sh

# A system that has only the standard library, as the start of a port. It reads images.
stub:
	@$(INSTALL) $(BUILD_PACKAGES)
	@cmake --preset stub >/dev/null
	@cmake --build --preset stub
	@Tests/stub.sh build/stub/bin/quorlin

# Here plain char is unsigned, as it is on ARM64; so the tests run with both.
asan:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) $(FUZZ_PACKAGES)
	@cmake --preset asan >/dev/null
	@cmake --build --preset asan
	@Tests/run_tests.py asan

# The tests with threads, under ThreadSanitizer. It leaves out the test of traces on the machine: that needs a new user
# namespace, which the sanitizer's own thread prevents.
tsan:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES)
	@cmake --preset tsan >/dev/null
	@cmake --build --preset tsan --target ContainerTest DebugTest FERROXLibTest LinuxHardwareTest MachineTest OSTest \
		CInterfaceTest SourcesTest
	@Tests/run_tests.py tsan

# Line coverage of the library; build/coverage/coverage.txt names the lines that no test runs.
coverage:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) gcovr
	@cmake --preset coverage >/dev/null
	@cmake --build --preset coverage
	@find build/coverage -name '*.gcda' -delete
	@Tests/run_tests.py coverage
	@gcovr --filter Sources/ --filter CInterface/ --filter Packages/ --txt build/coverage/coverage.txt build/coverage
	@tail -3 build/coverage/coverage.txt

windows:
	@$(INSTALL) $(BUILD_PACKAGES) $(WINDOWS_PACKAGES)
	@cmake --preset windows >/dev/null
	@cmake --build --preset windows

# For Linux on ARM64, cross-built. The libraries for it are unpacked into the build folder.
arm64:
	@$(INSTALL) $(BUILD_PACKAGES) $(ARM64_PACKAGES)
	@cmake/arm64-packages.sh build/arm64-packages $(ARM64_LIBRARIES)
	@cmake --preset arm64 >/dev/null
	@cmake --build --preset arm64

# The same tests under an emulator of the processor, and a guest with its kernel and firmware.
test-arm64:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) $(ARM64_PACKAGES) googletest
	@cmake/arm64-packages.sh build/arm64-packages $(ARM64_LIBRARIES)
	@cmake --preset arm64 -DQUORLIN_TESTS=ON >/dev/null
	@cmake --build --preset arm64
	@cmake/with-arm64.sh Tests/run_tests.py arm64
	@Tests/Machine/run.sh arm64 arm64-claims

# The same tests as Windows programs under Wine, and the tests of the service and its driver.
test-windows:
	@$(INSTALL) $(BUILD_PACKAGES) $(WINDOWS_PACKAGES) $(WINE_PACKAGES)
	@cmake --preset windows-tests >/dev/null
	@cmake --build --preset windows-tests
	@Tests/run_tests.py windows-tests

# Into $(DESTDIR)$(PREFIX). Without DESTDIR it also updates the loader's cache.
PREFIX = /usr/local
install: build
	@DESTDIR="$(DESTDIR)" cmake --install build/release --prefix "$(PREFIX)"
	@[ -n "$(DESTDIR)" ] || [ "$$(id -u)" != 0 ] || ldconfig

deb:
	@$(INSTALL) $(BUILD_PACKAGES) $(DEB_PACKAGES)
	@cmake/make-deb.sh build/deb

# The same for arm64, cross-built.
deb-arm64:
	@$(INSTALL) $(BUILD_PACKAGES) $(DEB_PACKAGES) $(ARM64_PACKAGES)
	@cmake/arm64-packages.sh build/arm64-packages $(ARM64_LIBRARIES) $(ARM64_SHARED_LIBRARIES)
	@cmake/make-deb.sh build/deb-arm64 arm64

zip: windows
	@$(INSTALL) $(ZIP_PACKAGES)
	@cmake/make-zip.sh build/windows

# The SARIF of check, by a validator from npm.
test-sarif:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES)
	@command -v npm >/dev/null || $(INSTALL) npm
	@cmake --preset release -DQUORLIN_TESTS=ON >/dev/null
	@cmake --build --preset release --target quorlin_program write_images
	@Tests/Sarif/run.sh build/release/bin

# The page of report in Chromium; build/release/report gets pictures of pages.
test-report:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) $(REPORT_PACKAGES)
	@command -v npm >/dev/null || $(INSTALL) npm
	@cmake --preset release -DQUORLIN_TESTS=ON >/dev/null
	@cmake --build --preset release --target quorlin_program write_images
	@Tests/Report/run.sh build/release/bin build/release/report

# The metrics of many tables, by promtool and node_exporter.
test-metrics:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) $(METRICS_PACKAGES)
	@cmake --preset release -DQUORLIN_TESTS=ON >/dev/null
	@cmake --build --preset release --target quorlin_program write_images
	@Tests/Metrics/run.sh build/release/bin build/metrics

# The fact and the role that installs it, by Ansible on this machine, in a scratch folder.
test-ansible:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) $(ANSIBLE_PACKAGES)
	@cmake --preset release -DQUORLIN_TESTS=ON >/dev/null
	@cmake --build --preset release --target quorlin_program
	@Tests/Ansible/run.sh build/release/bin

# The fleet tool: its queries against the truth of a made fleet, kills, shards, and what users see.
test-fleet: fleet-program
	@Fleet/test/run.sh build/release/bin build/fleet node --test --test-reporter=spec \
		test/queries.test.mjs test/ingest.test.mjs test/command_line.test.mjs

# The same queries by another engine, which is a large package.
test-fleet-engines: fleet-program
	@Fleet/test/run.sh build/release/bin build/fleet node --test --test-reporter=spec test/engines.test.mjs

# FLEET_MACHINES machines, of which one in 41 is away on each of two days: a million tables a day, with figures. The
# images of a day take 4 GB and are quickest to delete if FLEET_IMAGES names a folder in memory, such as /dev/shm/fleet.
FLEET_MACHINES = 1025000
test-fleet-million: fleet-program
	@Fleet/test/run.sh build/release/bin build/fleet node test/scale.mjs $(FLEET_MACHINES)

fleet-program:
	@$(INSTALL) $(BUILD_PACKAGES)
	@command -v npm >/dev/null || $(INSTALL) nodejs npm
	@cmake --preset release >/dev/null
	@cmake --build --preset release --target quorlin_program

# Measures the program and dmidecode in one run, and writes Docs/Performance.md from that. The images are those in the
# folder QUORLIN_BENCH_IMAGES, else in ../shared/tables, else generated. Containers with a million entries take minutes;
# run them with build/bench/bin/quorlin_bench --benchmark_filter=1000000.
BENCH_OPTIONS = --benchmark_repetitions=10 --benchmark_min_time=0.02 --benchmark_enable_random_interleaving=true \
	--benchmark_display_aggregates_only=true --benchmark_filter=-1000000
BENCH_IMAGES = $(or $(QUORLIN_BENCH_IMAGES),$(wildcard ../shared/tables),build/bench/images)
bench:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) $(BENCH_PACKAGES)
	@cmake --preset bench >/dev/null
	@cmake --build --preset bench --target quorlin_bench quorlin_limit quorlin_program quorlin_walk write_images
	@mkdir -p build/bench/images && build/bench/bin/write_images build/bench/images
	@Benchmarks/bench.py build/bench/bin $(BENCH_IMAGES) >build/bench/figures.txt
	@QUORLIN_BENCH_IMAGES=$(BENCH_IMAGES) build/bench/bin/quorlin_bench --benchmark_out=build/bench/bench.json \
		--benchmark_out_format=json $(BENCH_OPTIONS)
	@Benchmarks/write_performance.py build/bench/figures.txt build/bench/bench.json >build/bench/Performance.md
	@mv build/bench/Performance.md Docs/Performance.md

# The instructions of ten runs, divided by those of dmidecode, against the ratios that are committed.
guard guard-update:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) valgrind
	@cmake --preset release -DQUORLIN_TESTS=ON >/dev/null
	@cmake --build --preset release --target quorlin_program write_images
	@python3 -B Benchmarks/guard.py build/release/bin Benchmarks/ratios.txt $(if $(filter guard-update,$@),--update)

# Runs each fuzzer for FUZZ_SECONDS, two at a time. A finding fails the run.
FUZZ_SECONDS = 60
fuzz:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) $(FUZZ_PACKAGES)
	@cmake --preset asan -DQUORLIN_FUZZ_SECONDS=$(FUZZ_SECONDS) >/dev/null
	@cmake --build --preset asan --target fuzz

format:
	@$(INSTALL) $(STYLE_PACKAGES)
	@git ls-files -z '*.cpp' '*.h' '*.c' | xargs -0 clang-format -i

# Format, line length, and clang-tidy over all that is compiled here. Its analyzer takes longer.
lint lint-long:
	@$(INSTALL) $(BUILD_PACKAGES) $(TEST_PACKAGES) $(STYLE_PACKAGES)
	@cmake/check-format.sh
	@cmake --preset debug -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
	@cmake/lint.sh build/debug $(if $(filter lint,$@),without-analyzer)

# Checks the format before each commit.
hooks:
	@printf '#!/bin/sh\nexec cmake/check-format.sh\n' >"$$(git rev-parse --git-path hooks)/pre-commit"
	@chmod +x "$$(git rev-parse --git-path hooks)/pre-commit"

clean:
	rm -rf build
