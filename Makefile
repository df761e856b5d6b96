# Front door: `make test` sets up a fresh Debian machine, builds and runs every test
# under the default, sanitizer and clang presets, and builds the example against the
# installed tree.
DEB_PACKAGES := g++ clang cmake ninja-build make pkg-config libgtest-dev libgmock-dev \
                libbenchmark-dev libicu-dev libsqlite3-dev libsoci-dev libsodium-dev \
                libcpp-httplib-dev chromium chromium-driver python3-selenium \
                libpq-dev postgresql-15
JOBS ?= $(shell nproc)
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
# Rebuilds are cheap where ccache is installed; nothing changes where it is not.
LAUNCHER := $(shell command -v ccache >/dev/null 2>&1 && echo -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
INSTALL_DIR := $(CURDIR)/build/install

.PHONY: all deps build install test test-default test-install test-asan test-tsan test-clang \
        bench clean mutants demo test-portal load test-pg \
        differential bench-smoke bench-release

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

test-tsan: deps
	cmake --preset tsan $(LAUNCHER) >/dev/null
	cmake --build --preset tsan -j $(JOBS)
	ctest --preset tsan -j $(JOBS)

test-clang: deps
	cmake --preset clang $(LAUNCHER) >/dev/null
	cmake --build --preset clang -j $(JOBS)
	ctest --preset clang -j $(JOBS)

test: test-default test-pg test-install test-portal test-asan test-clang bench-smoke

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
# is stopped whatever happens.
test-pg: build
	tools/pg_cluster.sh run build/pg -- \
	  ctest --preset default -L '^reference_test$$' -j $(JOBS) --output-on-failure


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

clean:
	rm -rf build
