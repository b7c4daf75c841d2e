# Thin front of the CMake presets: `make run` and `make test` work on a fresh Debian 12, as root or through sudo.
SHELL := /bin/bash
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 60
TEST_PRESETS := native x86 asan
SOURCES = $(shell git ls-files '*.c' '*.cpp' '*.h')
LIBRARY_ROOMS := frame tuning color noise_detail util platform
TIDY_SOURCES = $(shell git ls-files $(addsuffix /*.cpp,$(LIBRARY_ROOMS)) 'tools/*.cpp' 'examples/*.c' 'examples/*.cpp')

.PHONY: help run test $(addprefix test-,$(TEST_PRESETS)) test-tsan check check-format check-tidy check-cppcheck format bench \
	fuzz determinism coverage docs package abi digests pictures report-bundle test-report clean

help:
	@echo 'make run       install what is missing, build, and print the record of a sample frame'
	@echo 'make test      install what is missing, build every target, and run all tests of all of them'
	@echo 'make check     formatting, clang-tidy and cppcheck'
	@echo 'make format    format the sources'
	@echo 'make bench     build and run the benchmarks'
	@echo 'make fuzz      run the fuzz targets for FUZZ_SECONDS (60) each'
	@echo 'make determinism  the same results from gcc and clang, unoptimised and optimised'
	@echo 'make coverage  line and branch coverage of the library'
	@echo 'make docs      API pages from the headers, in build/docs/html'
	@echo 'make package   Debian packages of the 64-bit and the 32-bit library, in build/packages'
	@echo 'make report-bundle  the page of qz-isp report, where a build could not make it; takes node and npm'
	@echo 'make test-report  the page of qz-isp report in headless Chromium'
	@echo 'make digests   write down changed records of the sample scene, see CONTRIBUTING.md'
	@echo 'make abi       write down a changed binary interface, see CONTRIBUTING.md'

run:
	@scripts/install-deps.sh run
	@cmake --preset native -DQZ_ISP_EXAMPLES=OFF > /dev/null
	@cmake --build --preset native --target qz-isp --parallel $(JOBS)
	@build/native/qz-isp run

test:
	scripts/install-deps.sh test
	$(MAKE) --no-print-directory $(addprefix test-,$(TEST_PRESETS)) test-tsan

$(addprefix test-,$(TEST_PRESETS)): test-%:
	cmake --preset $* -DQZ_ISP_EXAMPLES=ON
	cmake --build --preset $* --parallel $(JOBS)
	ctest --preset $* --parallel $(JOBS) --no-tests=error --progress

# Only what several threads do.
test-tsan:
	cmake --preset tsan
	cmake --build --preset tsan --target threads_test --parallel $(JOBS)
	ctest --preset tsan --tests-regex '^threads_test' --no-tests=error

# One preset after the other: each build uses all cores.
.NOTPARALLEL:

check:
	scripts/install-deps.sh check
	$(MAKE) --no-print-directory check-format check-tidy check-cppcheck

check-format:
	clang-format --dry-run -Werror $(or $(SOURCES),$(error git lists no sources here))

check-tidy:
	cmake --preset native -DQZ_ISP_EXAMPLES=ON > /dev/null
	printf '%s\n' $(TIDY_SOURCES) | xargs -P $(JOBS) -n 1 clang-tidy -p build/native --quiet

check-cppcheck:
	mkdir -p build/cppcheck
	cppcheck --quiet --error-exitcode=1 --std=c++20 --enable=warning,performance,portability --inline-suppr -j $(JOBS) \
		--cppcheck-build-dir=build/cppcheck -I include -I platform/include -I . \
		$(TIDY_SOURCES)

format:
	clang-format -i $(SOURCES)

bench:
	scripts/install-deps.sh bench
	cmake --preset bench
	cmake --build --preset bench --parallel $(JOBS)
	build/bench/qz-isp-bench

fuzz:
	scripts/install-deps.sh fuzz
	cmake --preset fuzz > /dev/null
	cmake --build --preset fuzz --parallel $(JOBS)
	fuzz/run build/fuzz $(FUZZ_SECONDS) $(JOBS)

determinism:
	scripts/install-deps.sh determinism
	cmake --preset native -DQZ_ISP_EXAMPLES=ON
	cmake --build --preset native --parallel $(JOBS)
	scripts/determinism.sh $(VARIANTS)

coverage:
	scripts/install-deps.sh coverage
	cmake --preset coverage
	cmake --build --preset coverage --parallel $(JOBS)
	ctest --preset coverage --parallel $(JOBS) --no-tests=error
	gcovr --root . --object-directory build/coverage --delete --branches --print-summary

docs:
	scripts/install-deps.sh docs
	mkdir -p build
	doxygen docs/Doxyfile

package: package-native package-x86

package-native package-x86:
	scripts/install-deps.sh package
	cmake --preset $@ > /dev/null
	cmake --build --preset $@ --parallel $(JOBS)
	cd build/$@ && cpack

# Both targets' layouts, and the exported names.
abi: abi-native abi-x86

abi-native abi-x86: abi-%:
	scripts/install-deps.sh test
	cmake --preset $* > /dev/null
	cmake --build --preset $* --target update-abi --parallel $(JOBS)

# The sample scene's records.
digests:
	scripts/install-deps.sh test
	cmake --preset native > /dev/null
	cmake --build --preset native --target update-digests

# The page of qz-isp report, for builds on a machine that had no Node.js or no network before.
report-bundle:
	scripts/install-deps.sh node
	node tools/report/build.mjs --required build/report-bundle

# The page in headless Chromium; screenshots are left in build/report-test.
test-report: report-bundle
	scripts/install-deps.sh report
	cmake --preset native > /dev/null
	cmake --build --preset native --target qz-isp --parallel $(JOBS)
	mkdir -p build/report-test
	cp tests/report/package.json tests/report/package-lock.json build/report-test
	cd build/report-test && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error && \
		PROGRAM=../native/qz-isp node --test ../../tests/report/page_test.mjs

# docs/record-layout.svg, from the record's list of blocks.
pictures:
	scripts/install-deps.sh test
	cmake --preset native > /dev/null
	cmake --build --preset native --target record_picture
	cp build/native/tests/shipped/record-layout.svg docs/

clean:
	rm -rf build
