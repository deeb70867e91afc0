# Quick start: `make demo` runs the main job on the bundled examples, `make test` runs every test.
# Both install the Debian packages that are missing, then configure and build in Release.

PACKAGES := g++ cmake make pkg-config libgtest-dev libgmock-dev libbenchmark-dev libfmt-dev \
            libcli11-dev libzip-dev libpugixml-dev libfftw3-dev \
            nlohmann-json3-dev gettext python3-openpyxl
BUILD    := build
JOBS     ?= $(shell nproc)
SUDO     := $(shell [ "$$(id -u)" -eq 0 ] || echo sudo)

.PHONY: all deps configure build test demo asan bench clean

all: build

deps:
	@missing=""; for p in $(PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q 'install ok installed' || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  $(SUDO) apt-get update -qq && DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y -qq $$missing; \
	fi

configure: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release

build: configure
	cmake --build $(BUILD) -j $(JOBS)

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

demo: build
	./tools/demo.sh $(BUILD)/bin/velmora

asan: deps
	cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DVELMORA_SANITIZE=ON -DVELMORA_BENCH=OFF
	cmake --build build-asan -j $(JOBS)
	cd build-asan && ctest --output-on-failure -j $(JOBS)

bench: build
	@for b in $(BUILD)/bin/*_bench; do echo "== $$b"; $$b; done

clean:
	rm -rf $(BUILD) build-asan
