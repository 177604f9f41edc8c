#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine, builds everything under AddressSanitizer and
# UndefinedBehaviorSanitizer and runs the whole suite through ctest.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset asan
cmake --build --preset asan
ctest --preset asan
