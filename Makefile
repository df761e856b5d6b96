# Front door: `make test` sets up a fresh Debian machine, builds and runs every test
# under the default, sanitizer and clang presets, and builds the example against the
# installed tree.
DEB_PACKAGES := g++ clang cmake ninja-build make pkg-config libgtest-dev libgmock-dev \
                libbenchmark-dev libicu-dev libsqlite3-dev libsoci-dev libsodium-dev \
                libcpp-httplib-dev chromium chromium-driver python3-selenium \
                libpq-dev postgresql-15
# The sweeps generate their tables with python3; fuzzing needs clang's runtime; coverage gcovr.
DEB_PACKAGES += python3 libclang-rt-14-dev gcovr
JOBS ?= $(shell nproc)
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
# Rebuilds are cheap where ccache is installed; nothing changes where it is not.
LAUNCHER := $(shell command -v ccache >/dev/null 2>&1 && echo -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
INSTALL_DIR := $(CURDIR)/build/install

.PHONY: all deps build install test test-default test-install test-asan test-tsan test-clang \
        bench clean mutants demo test-portal load test-pg \
        differential bench-smoke bench-release \
        fuzz fuzz-build test-fuzz coverage scale-load test-scale

all: build

# Installs only what is missing, so a prepared machine pays nothing.
deps:
	@missing=""; for p in $(DEB_PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  $(SUDO) apt-get update -qq && DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y -qq $$missing; \
	fi

build: deps
	cmake --preset default $(LAUNCHER) >/dev/null
	cmake --build --preset default -j $(JOBS)

# Headers, libraries, module, CMake package and pkg-config files into build/install.
install: build
	rm -rf $(INSTALL_DIR)
	cmake --install build/default --prefix $(INSTALL_DIR)

test-default: build
	ctest --preset default -j $(JOBS)

# The example is built against the installed tree only: once through the CMake package,
# once through pkg-config. Either breaks when the install does.
test-install: install
	rm -rf build/examples
	cmake -S examples -B build/examples -G Ninja -DCMAKE_PREFIX_PATH=$(INSTALL_DIR) $(LAUNCHER) >/dev/null
	cmake --build build/examples -j $(JOBS)
	build/examples/requisition_page
	pc=$$(dirname $$(find $(INSTALL_DIR) -name kxui03.pc)); \
	  g++ -std=c++20 examples/requisition_page.cpp -o build/examples/requisition_page_pc \
	      $$(PKG_CONFIG_PATH=$$pc pkg-config --cflags --libs kxui03-services) && \
	  LD_LIBRARY_PATH=$$(PKG_CONFIG_PATH=$$pc pkg-config --variable=libdir kxui03) \
	      build/examples/requisition_page_pc >/dev/null

test-asan: deps
	cmake --preset asan $(LAUNCHER) >/dev/null
	cmake --build --preset asan -j $(JOBS)
	ctest --preset asan -j $(JOBS)

# ThreadSanitizer on the tests that start threads; only their programs are built.
TSAN_TESTS := kxui/kxui_frame_test services/services_test
test-tsan: deps
	cmake --preset tsan $(LAUNCHER) >/dev/null
	cmake --build --preset tsan -j $(JOBS) --target $(notdir $(TSAN_TESTS))
	@for t in $(TSAN_TESTS); do \
	  (cd build/tsan/$$(dirname $$t) && ./$$(basename $$t) --gtest_filter='*Threads*') || exit 1; done

test-clang: deps
	cmake --preset clang $(LAUNCHER) >/dev/null
	cmake --build --preset clang -j $(JOBS)
	ctest --preset clang -j $(JOBS)

test: test-default test-pg test-install test-portal test-scale test-asan test-clang test-tsan test-fuzz bench-smoke

# The portal: `make demo` serves it on a freshly seeded database (PORT= to move it).
PORT ?= 8080
PORTAL := build/default/apps/portal/kxportal
SEED := build/default/reference/kxseed
demo: build
	rm -f build/demo.db
	$(SEED) --db build/demo.db
	@echo ""
	@echo "Procurement portal on http://127.0.0.1:$(PORT)/  (Ctrl-C stops it)"
	@echo "  requisitioner: u1_5 / u1_5-pw"
	@echo "  approver:      u1_3 / u1_3-pw  (u1_5's manager)"
	@echo ""
	$(PORTAL) --db build/demo.db --port $(PORT)

# Page tests in headless chromium (screenshots in build/portal-screens), then a short
# load test; the system python, whose selenium Debian packages.
test-portal: build
	/usr/bin/python3 apps/portal/browser_test.py --build build/default --out build/portal-screens
	rm -f build/portal-load.db && $(SEED) --db build/portal-load.db --users-per-borg 17 --parts 300 >/dev/null
	build/default/apps/portal/kxportal_load --db build/portal-load.db --users 50 --seconds 10

# The full load test: 50 signed-in users for 60 seconds.
load: build
	rm -f build/portal-load.db && $(SEED) --db build/portal-load.db --parts 300 >/dev/null
	build/default/apps/portal/kxportal_load --db build/portal-load.db --users 50 --seconds 60

# The reference tier's tests once more, on a throwaway PostgreSQL cluster in build/pg that
# is stopped whatever happens; then the portal's PostgreSQL-only tests there.
test-pg: build
	tools/pg_cluster.sh run build/pg -- sh -c \
	  "ctest --preset default -L '^reference_test$$' -j $(JOBS) --output-on-failure && \
	   build/default/apps/portal/apps_portal_test --gtest_filter='PortalOnPostgres.*'"

# Two portal processes on one throwaway PostgreSQL database, half the users contending for
# the same approvals and receipts, the first process killed halfway (tools/scale_load.sh).
scale-load: build
	tools/scale_load.sh --users 100 --seconds 60

test-scale: build
	tools/scale_load.sh --users 20 --seconds 10

bench: build
	@for b in build/default/bench/*_bench; do echo "== $$b"; $$b; done

# The locale services' own number and date texts against ICU on 1.5 million random values
# per test (make test draws 100,000).
differential: build
	KXUI_DIFFERENTIAL_VALUES=1500000 build/default/services/services_test --gtest_filter='DifferentialTest.*'

# Every benchmark once with a short time, so none can rot (the figures mean nothing here).
bench-smoke: build
	@for b in build/default/bench/*_bench; do echo "== $$b"; KXUI_BENCH_LIST_ROWS=100,2000 $$b --benchmark_min_time=0.001 >/dev/null || exit 1; done

# The figures worth quoting: a Release build, repetitions, min and median.
bench-release: deps
	cmake --preset release $(LAUNCHER) >/dev/null
	cmake --build --preset release -j $(JOBS)
	@for b in build/release/bench/*_bench; do echo "== $$b"; $$b --benchmark_repetitions=5; done

# make mutants FILE=kxui/requisition/ui_req.cpp [ARGS="--max 40"]: mutation testing of one source.
mutants:
	@test -n "$(FILE)" || { echo "usage: make mutants FILE=path/to/source.cpp [ARGS='--max N --list']"; exit 2; }
	python3 tools/mutants.py $(FILE) $(ARGS)

# libFuzzer targets (fuzz/), each run for FUZZ_SECONDS from its seed corpus in
# fuzz/corpus/<name>; what a run discovers is kept in build/fuzz/corpus. Any crash,
# sanitizer report or broken invariant fails the target (the input is left in build/fuzz).
FUZZ_SECONDS ?= 60
FUZZ_TARGETS := $(patsubst fuzz/%_fuzz.cpp,%,$(wildcard fuzz/*_fuzz.cpp))
fuzz-build: deps
	cmake --preset fuzz $(LAUNCHER) >/dev/null
	cmake --build --preset fuzz -j $(JOBS) --target fuzz_targets

fuzz: fuzz-build
	@for t in $(FUZZ_TARGETS); do \
	  mkdir -p build/fuzz/corpus/$$t build/fuzz/findings; \
	  build/fuzz/fuzz/$${t}_fuzz -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1 \
	    -artifact_prefix=build/fuzz/findings/$$t- build/fuzz/corpus/$$t fuzz/corpus/$$t \
	    > build/fuzz/$$t.log 2>&1 || { tail -60 build/fuzz/$$t.log; echo "FUZZ FINDING in $$t"; exit 1; }; \
	  printf '%-16s %s executions\n' $$t \
	    "$$(sed -n 's/^stat::number_of_executed_units: *//p' build/fuzz/$$t.log)"; \
	done

test-fuzz:
	$(MAKE) fuzz FUZZ_SECONDS=10

# Line and branch coverage of kxui/ and services/ from the test suite (gcc --coverage),
# HTML under build/coverage/index.html.
coverage: deps
	cmake -S . -B build/coverage -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKXUI_BUILD_BENCH=OFF \
	  -DCMAKE_CXX_FLAGS="--coverage -O0" -DCMAKE_EXE_LINKER_FLAGS=--coverage \
	  -DCMAKE_SHARED_LINKER_FLAGS=--coverage $(LAUNCHER) >/dev/null
	tests=$$(ninja -C build/coverage -t targets all | sed -n 's/^\(\(kxui\|services\|reliability\)[a-z_]*_test\):.*/\1/p'); \
	  cmake --build build/coverage -j $(JOBS) --target $$tests && \
	  find build/coverage -name '*.gcda' -delete && \
	  for t in $$tests; do b=$$(find build/coverage -type f -name $$t); \
	    (cd $$(dirname $$b) && ./$$t >/dev/null) || exit 1; done
	mkdir -p build/coverage/html
	gcovr -r . build/coverage --filter 'kxui/' --filter 'services/' \
	  --exclude '.*_test\.cpp' --exclude 'kxui/testing/' --exclude-throw-branches \
	  --html-details build/coverage/html/index.html --print-summary
	gcovr -r . build/coverage --filter 'kxui/frame/' --exclude '.*_test\.cpp' \
	  --exclude-throw-branches --print-summary -o /dev/null

clean:
	rm -rf build
