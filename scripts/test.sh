#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine, builds everything under AddressSanitizer and
# UndefinedBehaviorSanitizer and runs the whole suite through ctest. Then it
# builds the optimised tree as well (the one scripts/run.sh uses, with the
# benchmarks), so that optimiser-only warnings cannot break the main job.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset asan
cmake --build --preset asan
ctest --preset asan
cmake --preset release >/dev/null
cmake --build --preset release
bash scripts/check_sdk.sh
