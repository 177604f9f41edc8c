#!/usr/bin/env bash
# Installs the optimised build into a temporary prefix and builds the
# example module out of tree against it, through the CMake package and
# through pkg-config, then loads the module with the installed qbfs and
# validates it. Run
# after the release tree is built (scripts/test.sh does).
set -euo pipefail
cd "$(dirname "$0")/.."
prefix="$(mktemp -d)"
trap 'rm -rf "$prefix"' EXIT
cmake --install build/release --prefix "$prefix" >/dev/null
# Nothing of the build or source tree may be named by the installed package.
if grep -rl -e "$PWD" "$prefix/lib/cmake" "$prefix/lib/pkgconfig"; then
  echo "check_sdk: the installed package names the build tree" >&2
  exit 1
fi
cmake -S examples/module -B build/example -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build build/example
# pkg-config gives a module author the same headers.
PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags qbfsys >/dev/null
c++ $(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags qbfsys) -fsyntax-only \
  examples/module/memfs_walk.cpp
out="$("$prefix/bin/qbfs" -m build/example/libqbmemfs.so tree)"
grep -q 'memfs:' <<<"$out" || { echo "check_sdk: the example module's element is missing:" >&2; echo "$out" >&2; exit 1; }
# The example must pass the validator that module authors are told to run.
"$prefix/bin/qbfs" validate --seed 1 build/example/libqbmemfs.so >build/example/validate.txt ||
  { cat build/example/validate.txt >&2; echo "check_sdk: the example module fails qbfs validate" >&2; exit 1; }
echo "check_sdk: the installed SDK builds the example module, which loads and passes qbfs validate"
