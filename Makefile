# Thin front of the CMake presets: `make run` and `make test` work on a fresh Debian 12, as root or through sudo.
SHELL := /bin/bash
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 60
TEST_PRESETS := native x86 asan
SOURCES = $(shell git ls-files '*.c' '*.cpp' '*.h')
# What ships or is installed, and is of the native build.
TIDY_SOURCES = $(shell git ls-files '*.c' '*.cpp' ':!tests' ':!bench' ':!fuzz' ':!docs' ':!page')
INSTALL_DEPS ?= scripts/install-deps.sh

.PHONY: help run test $(addprefix test-,$(TEST_PRESETS)) test-tsan check check-format check-tidy check-cppcheck format bench \
	bench-device fuzz determinism verify-powers coverage docs package abi digests pictures report-bundle test-report \
	report-module test-module clean

help:
	@echo 'make run       install what is missing, build, and print the record of a sample frame'
	@echo 'make test      install what is missing, build every target, and run all tests of all of them'
	@echo 'make check     formatting, clang-tidy and cppcheck'
	@echo 'make format    format the sources'
	@echo 'make bench     build and run the benchmarks'
	@echo 'make bench-device  the same at the instruction set of the device, and what its 32-bit build costs there'
	@echo 'make fuzz      run the fuzz targets for FUZZ_SECONDS (60) each'
	@echo 'make determinism  the same results from gcc and clang at every level, and with musl'
	@echo 'make verify-powers  the powers of the tone curves against MPFR, every one of them: hours; STEP=100 for each 100th'
	@echo 'make coverage  line and branch coverage of the library'
	@echo 'make docs      API pages from the headers, in build/docs/html'
	@echo 'make package   Debian packages of the 64-bit and the 32-bit library, in build/packages'
	@echo 'make report-bundle  the live page of qz-isp report for the builds that follow; installs node, npm and clang'
	@echo 'make test-report  the page of qz-isp report in headless Chromium'
	@echo 'make test-module  the library and the desk as WebAssembly, beside the program'
	@echo 'make digests   write down changed records and makernotes, see CONTRIBUTING.md'
	@echo 'make abi       write down a changed binary interface, see CONTRIBUTING.md'

# The page of qz-isp report takes Node.js, which is not worth installing for a look at a record.
page_where_possible = if type -P node npm > /dev/null; then node page/build.mjs --install build/report-bundle || true; fi; \
	if [ -d build/wasm ]; then cmake --build --preset wasm --parallel $(JOBS); fi

run:
	@$(INSTALL_DEPS) run
	@$(page_where_possible)
	@cmake --preset native > /dev/null
	@cmake --build --preset native --target qz-isp --parallel $(JOBS)
	@build/native/qz-isp run

test:
	$(INSTALL_DEPS) test
	@$(page_where_possible)
	$(MAKE) --no-print-directory $(addprefix test-,$(TEST_PRESETS)) test-tsan

$(addprefix test-,$(TEST_PRESETS)): test-%:
	cmake --preset $*
	cmake --build --preset $* --parallel $(JOBS)
	ctest --preset $* --parallel $(JOBS) --no-tests=error --progress

# Only what several threads do.
test-tsan:
	cmake --preset tsan
	cmake --build --preset tsan --target threads_test qz-isp --parallel $(JOBS)
	ctest --preset tsan --tests-regex '^threads_' --no-tests=error

# One preset after the other: each build uses all cores.
.NOTPARALLEL:

check:
	$(INSTALL_DEPS) check
	$(MAKE) --no-print-directory check-format check-tidy check-cppcheck

check-format:
	clang-format --dry-run -Werror $(or $(SOURCES),$(error git lists no sources here))

check-tidy:
	cmake --preset native > /dev/null
	printf '%s\n' $(TIDY_SOURCES) | xargs -P $(JOBS) -n 1 clang-tidy -p build/native --quiet

check-cppcheck:
	mkdir -p build/cppcheck
	cppcheck --quiet --error-exitcode=1 --std=c++20 --enable=warning,performance,portability --inline-suppr -j $(JOBS) \
		--cppcheck-build-dir=build/cppcheck -I include -I platform/include -I . \
		$(TIDY_SOURCES)

format:
	clang-format -i $(SOURCES)

# RUNS of the benchmarks whose names match BENCH_FILTER, and a table of medians.
RUNS ?= 1
bench_runs = rm -f build/$(1)/run-*.txt; for run in $$(seq $(RUNS)); do build/$(1)/qz-isp-bench \
	--benchmark_filter='$(or $(BENCH_FILTER),.)' | tee build/$(1)/run-$$run.txt; done; bench/medians.sh build/$(1)/run-*.txt

bench:
	$(INSTALL_DEPS) bench
	cmake --preset bench
	cmake --build --preset bench --parallel $(JOBS)
	$(call bench_runs,bench)

bench-device:
	$(INSTALL_DEPS) bench device
	cmake --preset bench-device
	cmake --build --preset bench-device --target qz-isp-bench --parallel $(JOBS)
	cmake --preset bench-x86
	cmake --build --preset bench-x86 --target qz-isp-device-cases --parallel $(JOBS)
	export OPENCV_CPU_DISABLE=SSE4.1,SSE4.2,AVX,FP16,AVX2,AVX512-SKX OPENBLAS_CORETYPE=Core2; \
		$(call bench_runs,bench-device)
	bench/device/count.sh build/bench-x86

fuzz:
	$(INSTALL_DEPS) fuzz
	cmake --preset fuzz > /dev/null
	cmake --build --preset fuzz --parallel $(JOBS)
	fuzz/run build/fuzz $(FUZZ_SECONDS) $(JOBS)

determinism:
	$(INSTALL_DEPS) determinism
	cmake --preset native
	cmake --build --preset native --parallel $(JOBS)
	scripts/determinism.sh $(VARIANTS)

verify-powers:
	$(INSTALL_DEPS) verify
	cmake --preset native
	cmake --build --preset native --target verify-powers --parallel $(JOBS)
	build/native/verify-powers $(STEP)

coverage:
	$(INSTALL_DEPS) coverage
	cmake --preset coverage
	cmake --build --preset coverage --parallel $(JOBS)
	ctest --preset coverage --parallel $(JOBS) --no-tests=error
	gcovr --root . --object-directory build/coverage --delete --branches --print-summary

docs:
	$(INSTALL_DEPS) docs
	mkdir -p build
	doxygen docs/Doxyfile

package: package-native package-x86

package-native package-x86:
	$(INSTALL_DEPS) package
	@$(page_where_possible)
	cmake --preset $@ > /dev/null
	cmake --build --preset $@ --parallel $(JOBS)
	cd build/$@ && cpack

# Both targets' layouts, and the exported names.
abi: abi-native abi-x86

abi-native abi-x86: abi-%:
	$(INSTALL_DEPS) test
	cmake --preset $* > /dev/null
	cmake --build --preset $* --target update-abi --parallel $(JOBS)

# Records and makernotes of the sample scene and of untuned frames.
digests:
	$(INSTALL_DEPS) test
	cmake --preset native > /dev/null
	cmake --build --preset native --target update-digests

# The library and the desk as a WebAssembly module, which makes the page live.
report-module:
	$(INSTALL_DEPS) module
	cmake --preset wasm > /dev/null
	cmake --build --preset wasm --parallel $(JOBS)

# The page of qz-isp report, for the builds that follow.
report-bundle: report-module
	node page/build.mjs --install build/report-bundle

# The page in headless Chromium; screenshots are left in build/report-test.
test-report: report-bundle
	$(INSTALL_DEPS) report
	cmake --preset native > /dev/null
	cmake --build --preset native --target qz-isp --parallel $(JOBS)
	mkdir -p build/report-test
	cp tests/report/package.json tests/report/package-lock.json build/report-test
	cd build/report-test && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error && \
		PROGRAM=../native/qz-isp node --test ../../tests/report/page_test.mjs ../../tests/report/live_test.mjs

# The module beside the program.
test-module: report-module
	cmake --preset native > /dev/null
	cmake --build --preset native --target qz-isp --parallel $(JOBS)
	MODULE=build/wasm/qz-isp-module.wasm PROGRAM=build/native/qz-isp node --test tests/module/module_test.mjs

# docs/record-layout.svg, from the record's list of blocks.
pictures:
	$(INSTALL_DEPS) test
	cmake --preset native > /dev/null
	cmake --build --preset native --target record_picture
	cp build/native/tests/shipped/record-layout.svg docs/

clean:
	rm -rf build
