#!/usr/bin/env bash
# Holds the tools to the one public road: a tool is a host like any other, so
# it reaches a module only through the layer's exported functions and
# includes only installed public headers. Fails (exit 1, naming file and
# line) when a tool source
#   - touches a handle's table or adapter (funcTable, ->adapter), or
#   - includes a header that is not its own (quoted includes must name a file
#     under tools/) and not an installed public header (angle includes of the
#     project's own folders must name a file in a public include folder), or
#   - is given an include folder of a module or of the layer's internals.
# The build runs it (target check_public_road); it needs only grep. An
# argument names another source tree to check (the tests use one).
set -uo pipefail
root="${1:-$(cd "$(dirname "$0")/.." && pwd)}"
cd "$root"
public=(engine/fsys/shared/include host/include support/include property_tree/include
        modules/posix/include)
status=0
complain() { echo "check_public_road: $1" >&2; status=1; }

while IFS= read -r hit; do
  complain "$hit: reaches a module's table or adapter; use the FS_Hand functions (qbfsys/handle_ops.h)"
done < <(grep -rnE 'funcTable|->adapter\b|\.adapter\b' tools --include='*.cpp' --include='*.h')

while IFS=: read -r file line text; do
  name=$(sed -E 's/.*#include[[:space:]]*"([^"]+)".*/\1/' <<<"$text")
  dir=$(dirname "$file")
  if [ ! -f "$dir/$name" ] && [ -z "$(find tools -path "*/$name" -print -quit)" ]; then
    complain "$file:$line: includes \"$name\", which is not a file of the tools"
  fi
done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' tools --include='*.cpp' --include='*.h')

while IFS=: read -r file line text; do
  name=$(sed -E 's/.*#include[[:space:]]*<([^>]+)>.*/\1/' <<<"$text")
  found=0
  for dir in "${public[@]}"; do [ -f "$dir/$name" ] && found=1; done
  [ "$found" = 1 ] || complain "$file:$line: includes <$name>, which is not an installed public header"
done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*<(qbfsys|qbhost|qbclass|qbposix|fs_property_tree)[/.>]' \
           tools --include='*.cpp' --include='*.h')

while IFS= read -r hit; do
  complain "$hit: gives a tool an include folder outside the public headers"
done < <(grep -nE 'include_directories.*(modules/|/internal|engine/fsys/shared/[a-z]+[^/]*$)' \
           $(find tools -name CMakeLists.txt))

exit $status
