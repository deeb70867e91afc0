# Quick start: `make demo` runs the main job on the bundled examples, `make test` runs every test.
# Both install the Debian packages that are missing, then configure and build in Release.

PACKAGES := g++ cmake make pkg-config libgtest-dev libgmock-dev libbenchmark-dev libfmt-dev \
            libcli11-dev libzip-dev libpugixml-dev libfftw3-dev \
            nlohmann-json3-dev gettext zip unzip python3 python3-openpyxl libcairo2-dev fonts-noto-cjk \
            qt6-base-dev qt6-l10n-tools
BUILD    := build
JOBS     ?= $(shell nproc)
SUDO     := $(shell [ "$$(id -u)" -eq 0 ] || echo sudo)

FUZZ_PACKAGES := clang libclang-rt-14-dev
FUZZ_SECONDS  ?= 600

.PHONY: all deps configure build test demo gui gui-shots translations asan bench fuzz clean

all: build

deps:
	@missing=""; for p in $(PACKAGES) $(EXTRA_PACKAGES); do \
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

# The desktop window on the bundled examples; gui-shots writes a picture of each tab after its Go
# into out/screenshots without a screen.
gui: build
	$(BUILD)/bin/velmora-gui examples/*.erd

# The window speaks the language of the locale: Japanese pictures in out/screenshots, English ones in
# out/screenshots/en.
gui-shots: build
	LC_ALL=ja_JP.UTF-8 QT_QPA_PLATFORM=offscreen $(BUILD)/bin/velmora-gui --screenshots out/screenshots \
	  --report-template examples/report/iri_report.xlsm examples/*.erd
	LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen $(BUILD)/bin/velmora-gui --screenshots out/screenshots/en \
	  --report-template examples/report/iri_report.xlsm examples/*.erd

# After the window's texts change: lupdate adds the new ones to the English translation (unfinished,
# to be written) and drops those no longer in the code. The build compiles the .ts with lrelease.
LUPDATE ?= /usr/lib/qt6/bin/lupdate
translations:
	$(LUPDATE) gui -no-obsolete -locations none -source-language ja -target-language en \
	  -ts gui/translations/velmora_en.ts

asan: deps
	cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DVELMORA_SANITIZE=ON -DVELMORA_BENCH=OFF
	cmake --build build-asan -j $(JOBS)
	cd build-asan && ctest --output-on-failure -j $(JOBS)

# libFuzzer with AddressSanitizer and UndefinedBehaviorSanitizer: every fuzz target for FUZZ_SECONDS
# (make fuzz FUZZ_SECONDS=60), its corpus kept in build-fuzz/corpus between runs.
fuzz:
	@$(MAKE) --no-print-directory deps EXTRA_PACKAGES="$(FUZZ_PACKAGES)"
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMORA_FUZZ=ON \
	  -DVELMORA_BENCH=OFF -DVELMORA_FUZZ_SECONDS=$(FUZZ_SECONDS)
	cmake --build build-fuzz -j $(JOBS) --target fuzz_erd_reader fuzz_text_import fuzz_settings \
	  fuzz_user_data fuzz_project_archive fuzz_report_script
	cmake --build build-fuzz --target fuzz-run

bench: build
	@for b in $(BUILD)/bin/*_bench; do echo "== $$b"; $$b; done

clean:
	rm -rf $(BUILD) build-asan build-fuzz
