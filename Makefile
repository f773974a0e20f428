# make test   installs what is missing, builds with sanitizers and runs every test
# make demo   a gallery, a slideshow and a grid of Debian's mate-backgrounds photographs, with
#             captions, linked from demo/index.html
# make screenshots  the demo's sites on a laptop and a phone, as docs/screenshots/*.jpeg
# make bench  runs the benchmarks in bench/
# make install [PREFIX=/usr/local] [DESTDIR=]   installs the program, desktop entry, icon, manual
# make uninstall [DESTDIR=]                     removes exactly what the last install put there
# make package builds the Debian package build-release/orvella_VERSION_ARCH.deb

SHELL := /bin/bash
BUILD_TEST ?= build
BUILD_RELEASE ?= build-release
JOBS ?= $(shell nproc)
PREFIX ?= /usr/local

DEB_PACKAGES := cmake g++ ninja-build pkg-config qt6-base-dev libvips-dev libvips-tools \
	libfontconfig-dev fonts-dejavu-core \
	libexiv2-dev libheif-dev libsqlite3-dev sqlite3 libgtest-dev libimage-exiftool-perl \
	mate-backgrounds chromium time python3 desktop-file-utils man-db groff-base dpkg-dev file \
	shared-mime-info libcurl4-openssl-dev libssl-dev libsecret-1-dev openssh-server openssh-client vsftpd \
	xvfb xauth

.PHONY: all test demo screenshots bench deps npm-deps build-test build-release clean format install uninstall \
	package

all: build-release

deps:
	@missing=""; for p in $(DEB_PACKAGES); do \
		dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "ok installed" || missing="$$missing $$p"; \
	done; \
	if ! command -v node >/dev/null || ! command -v npm >/dev/null; then missing="$$missing nodejs npm"; fi; \
	if [ -n "$$missing" ]; then \
		echo "Installing:$$missing"; \
		SUDO=$$( [ "$$(id -u)" = 0 ] || echo sudo ); \
		$$SUDO apt-get update -qq && \
		DEBIAN_FRONTEND=noninteractive $$SUDO apt-get install -y -qq --no-install-recommends $$missing; \
	fi

npm-deps: deps
	@if [ ! -d tests/browser/node_modules/playwright-core ] || [ ! -d tests/browser/node_modules/jquery ]; then \
		cd tests/browser && npm ci --no-audit --no-fund --loglevel=error; \
	fi

build-test: npm-deps
	cmake -S . -B $(BUILD_TEST) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
		-DORVELLA_SANITIZE=ON -DORVELLA_WERROR=ON
	cmake --build $(BUILD_TEST) -j $(JOBS)

test: build-test
	ctest --test-dir $(BUILD_TEST) --output-on-failure -j $(JOBS)

build-release: deps
	cmake -S . -B $(BUILD_RELEASE) -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVELLA_TESTS=OFF
	cmake --build $(BUILD_RELEASE) -j $(JOBS) --target orvella

demo: build-release
	scripts/demo $(BUILD_RELEASE)/orvella demo

screenshots: demo npm-deps
	node docs/screenshots.mjs demo docs/screenshots

# The whole release build: the program and its manual page and completion, made from its help.
install: build-release
	cmake --build $(BUILD_RELEASE) -j $(JOBS)
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD_RELEASE) --prefix "$(PREFIX)"

uninstall:
	DESTDIR="$(DESTDIR)" cmake --build $(BUILD_RELEASE) --target uninstall

package: build-release
	cmake --build $(BUILD_RELEASE) -j $(JOBS)
	cd $(BUILD_RELEASE) && cpack -G DEB

bench: build-release
	@set -e; for b in bench/*; do if [ -x "$$b" ]; then echo "== $$b"; "$$b" $(BUILD_RELEASE)/orvella; fi; done

format:
	find src tests bench -name '*.cpp' -o -name '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD_TEST) $(BUILD_RELEASE) demo
