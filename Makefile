# Front door: `make test` sets up a fresh Debian machine, builds and runs every test
# under the default and the sanitizer presets.
DEB_PACKAGES := g++ cmake ninja-build make pkg-config libgtest-dev libgmock-dev \
                libbenchmark-dev libicu-dev libsqlite3-dev
JOBS ?= $(shell nproc)
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all deps build test test-default test-asan test-tsan bench demo clean mutants

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
	cmake --preset default >/dev/null
	cmake --build --preset default -j $(JOBS)

test-default: deps
	cmake --preset default >/dev/null
	cmake --build --preset default -j $(JOBS)
	ctest --preset default -j $(JOBS)

test-asan: deps
	cmake --preset asan >/dev/null
	cmake --build --preset asan -j $(JOBS)
	ctest --preset asan -j $(JOBS)

test-tsan: deps
	cmake --preset tsan >/dev/null
	cmake --build --preset tsan -j $(JOBS)
	ctest --preset tsan -j $(JOBS)

test: test-default test-asan

bench: build
	@for b in build/default/bench/*_bench; do echo "== $$b"; $$b; done

# make mutants FILE=kxui/requisition/ui_req.cpp [ARGS="--max 40"]: mutation testing of one source.
mutants:
	@test -n "$(FILE)" || { echo "usage: make mutants FILE=path/to/source.cpp [ARGS='--max N --list']"; exit 2; }
	python3 tools/mutants.py $(FILE) $(ARGS)

clean:
	rm -rf build
