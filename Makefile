# make run   builds and opens the window (or, without a display, says so)
# make test  builds and runs every test
# Both install what is missing on a fresh Debian 12 machine first.

BUILD ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

# Debian packages the build and the tests need.
PACKAGES = cmake ninja-build g++ pkg-config qt6-base-dev libgl-dev libgtest-dev libgmock-dev \
           libbenchmark-dev srecord python3-intelhex xvfb xauth

.PHONY: all deps configure build run test clean

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

$(BUILD)/build.ninja: CMakeLists.txt
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) $(CMAKE_FLAGS)

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -n "$$DISPLAY" ] || [ -n "$$WAYLAND_DISPLAY" ]; then \
	  exec $(BUILD)/kestrum; \
	else \
	  echo "No display: the window of kestrum needs one (DISPLAY or WAYLAND_DISPLAY)."; \
	  echo "Run it on a desktop, or under xvfb-run for a look without one."; \
	fi

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

clean:
	rm -rf $(BUILD)
