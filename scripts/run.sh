#!/usr/bin/env bash
# Sets up the machine, builds the release tree and runs the command-line host.
# Extra arguments go to the tool; with none it shows this machine's backup tree.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release
if [ "$#" -eq 0 ]; then
  set -- tree
fi
exec build/release/bin/qbfs "$@"
