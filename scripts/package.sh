#!/usr/bin/env bash
# Builds the Debian package of the console: a Release build of the console alone in build/package, then
# CPack. Prints the path of the .deb. Installs nothing on this machine.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

build=build/package
# Debian's own hardening flags (stack protector, fortified calls, read-only relocations), as a package
# built by Debian's tools would get, optimised for size rather than Debian's -O2: every page of the
# console's code is mapped in as it starts, so a smaller console starts sooner and in less memory. The
# debugging information is stripped from the package. Release adds only NDEBUG. Warnings are errors in the checked builds (scripts/test.sh),
# not here: GCC 12's optimiser reports false -Wrestrict overlaps in std::string code.
export DEB_BUILD_MAINT_OPTIONS=hardening=+all
cppflags=$(dpkg-buildflags --get CPPFLAGS)
# The package holds the console only, so only the console is built: installing must not first build
# everything (the simulated host, the tests, the benchmarks).
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKOVO_WERROR=OFF -DBUILD_TESTING=OFF \
  -DKOVO_BENCH=OFF -DCMAKE_SKIP_INSTALL_ALL_DEPENDENCY=ON \
  -DCMAKE_C_FLAGS="$cppflags $(dpkg-buildflags --get CFLAGS) -Os" -DCMAKE_C_FLAGS_RELEASE=-DNDEBUG \
  -DCMAKE_CXX_FLAGS="$cppflags $(dpkg-buildflags --get CXXFLAGS) -Os" -DCMAKE_CXX_FLAGS_RELEASE=-DNDEBUG \
  -DCMAKE_EXE_LINKER_FLAGS="$(dpkg-buildflags --get LDFLAGS)" >/dev/null
cmake --build "$build" --target kovo kovo-host -j "$(nproc)"
rm -f "$build"/kovo_*.deb
cpack --config "$build/CPackConfig.cmake" -B "$build"
deb=$(ls "$build"/kovo_*.deb)
echo "$deb"
