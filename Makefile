# make run           builds and opens the window (or, without a display, says so)
# make test          builds and runs every test
# make windows       cross-builds kestrum-cli.exe for 64-bit Windows
# make test-windows  runs its tests under Wine
# Both install what is missing on a fresh Debian 12 machine first.
# make install [PREFIX=/usr/local] [DESTDIR=]  installs the programs, manual pages and the rest
# make package  builds the Debian package build/kestrum_<version>_amd64.deb

BUILD ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

# Debian packages the build and the tests need.
PACKAGES = cmake ninja-build g++ clang clang-format libclang-rt-14-dev pkg-config qt6-base-dev libgl-dev libgtest-dev libgmock-dev \
           libbenchmark-dev srecord python3-intelhex xvfb xauth fonts-dejavu-core fonts-liberation \
           strace acl attr dpkg-dev file lintian desktop-file-utils man-db openbox x11-utils \
           g++-mingw-w64-x86-64 wine64

# What make run shows without a display: load, dump, sum and save, the
# files going into the build folder.
EXAMPLE = load examples/blink.hex dump 0 sum 0:FFFF \
          save $(BUILD)/blink.s --format s --range 0:FFFF ysm $(BUILD)/blink.YSM --sum 16-16 --range 0:FFFF

.PHONY: all deps format-check configure build run test test-asan test-xvfb test-xvfb-wm fuzz install package package-check windows test-windows clean

all: build

deps:
	@missing=""; \
	for p in $(PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q 'install ok installed' || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" = 0 ]; then \
	    echo "Installing:$$missing"; \
	    apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $$missing >/dev/null || exit 1; \
	  else \
	    echo "These Debian packages are missing:$$missing"; \
	    echo "Install them with: sudo apt-get install$$missing"; \
	    exit 1; \
	  fi; \
	fi

# CMAKE_FLAGS given on the command line (or in the environment) that differ
# from the last configure's start a fresh one, so that a flag left out is
# dropped too; without CMAKE_FLAGS the build keeps the flags it has.
FLAGS_FILE = $(BUILD)/cmake-flags.txt
ifneq ($(filter command line environment,$(origin CMAKE_FLAGS)),)
ifneq ($(strip $(CMAKE_FLAGS)),$(strip $(shell cat $(FLAGS_FILE) 2>/dev/null)))
RECONFIGURE = fresh
endif
endif

$(BUILD)/build.ninja: CMakeLists.txt
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) $(CMAKE_FLAGS)
	printf '%s\n' '$(strip $(CMAKE_FLAGS))' > $(FLAGS_FILE)

configure: deps
ifdef RECONFIGURE
	rm -f $(BUILD)/CMakeCache.txt $(BUILD)/build.ninja
endif
	@$(MAKE) --no-print-directory $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -n "$$DISPLAY" ] || [ -n "$$WAYLAND_DISPLAY" ]; then \
	  exec $(BUILD)/kestrum; \
	else \
	  echo "No display: the window of kestrum needs one (DISPLAY or WAYLAND_DISPLAY)."; \
	  echo "Run it on a desktop, or under xvfb-run for a look without one."; \
	  echo "Meanwhile, kestrum-cli on the bundled example:"; \
	  echo "kestrum-cli $(EXAMPLE)"; \
	  $(BUILD)/kestrum-cli $(EXAMPLE) && echo "Wrote $(BUILD)/blink.s and $(BUILD)/blink.YSM."; \
	fi

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# Every C++ file as the committed .clang-format lays it out.
format-check: deps
	git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror

# Stripped, as a package holds them; DESTDIR stages the tree elsewhere.
PREFIX ?= /usr/local
install: build
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD) --prefix "$(PREFIX)" --strip

# The Debian package, and what CI checks in it without installing it.
package: build
	rm -f $(BUILD)/kestrum_*.deb
	cd $(BUILD) && cpack -G DEB
package-check: package
	packaging/check $(BUILD)

# The whole suite again, built with AddressSanitizer and UndefinedBehaviorSanitizer.
ASAN_BUILD ?= build-asan
test-asan: deps
	cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKESTRUM_SANITIZE=ON \
	  -DKESTRUM_BENCH=OFF $(CMAKE_FLAGS)
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 QT_QPA_PLATFORM=offscreen \
	  ctest --output-on-failure -j $(JOBS)

# The window tests under a real X server, without a window manager.
test-xvfb: build
	cd $(BUILD) && QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x1024x24" \
	  ctest --output-on-failure -R '^gui\.'

# The same with a window manager (openbox) managing the windows.
test-xvfb-wm: build
	cd $(BUILD) && QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x1024x24" \
	  $(CURDIR)/scripts/with-openbox ctest --output-on-failure -R '^gui\.'

# Each fuzz target for FUZZ_SECONDS (clang and libFuzzer).
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
fuzz: deps
	CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DKESTRUM_FUZZ=ON -DKESTRUM_GUI=OFF -DKESTRUM_TESTS=OFF -DKESTRUM_BENCH=OFF
	cmake --build $(FUZZ_BUILD) -j $(JOBS)
	fuzz/run $(FUZZ_BUILD) $(FUZZ_SECONDS)

# The command line for 64-bit Windows, built with MinGW-w64 and tested
# under Wine in a Wine prefix of its own inside the build folder.
WINDOWS_BUILD ?= build-windows
WINE_ENV = WINEPREFIX=$(abspath $(WINDOWS_BUILD))/wine WINEDEBUG=-all WINEDLLOVERRIDES=winemenubuilder.exe=d
windows: deps
	cmake -S . -B $(WINDOWS_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) \
	  -DCMAKE_TOOLCHAIN_FILE=$(abspath cmake/mingw-w64-x86_64.cmake) $(CMAKE_FLAGS)
	cmake --build $(WINDOWS_BUILD) -j $(JOBS)

# The unit and command-line tests, then the same pipelines through both
# builds, their files compared byte for byte. One Wine server serves the
# whole run.
test-windows: windows configure
	cmake --build $(BUILD) --target kestrum-cli
	@test -f $(WINDOWS_BUILD)/wine/system.reg || $(WINE_ENV) wineboot --init
	-$(WINE_ENV) wineserver -p 30
	$(WINE_ENV) wine $(WINDOWS_BUILD)/kestrum-cli.exe --version
	cd $(WINDOWS_BUILD) && $(WINE_ENV) ctest --output-on-failure -j $(JOBS)
	$(WINE_ENV) scripts/compare-builds $(BUILD)/kestrum-cli $(WINDOWS_BUILD)/kestrum-cli.exe

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD) $(WINDOWS_BUILD)
