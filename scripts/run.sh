#!/usr/bin/env bash
# Sets up the machine, builds the release tree and runs the command-line host.
# With no arguments it runs the main job: back up a real directory of this
# machine (QB_SOURCE, default /usr/share/doc) through the layer, restore it
# into a temporary directory, and verify the archive against the source and
# against the restored copy. Arguments go to the tool instead.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release
qbfs=build/release/bin/qbfs
if [ "$#" -gt 0 ]; then
  exec "$qbfs" "$@"
fi

source_dir=$(realpath "${QB_SOURCE:-/usr/share/doc}")
work=$(mktemp -d "${TMPDIR:-/tmp}/qbfs-run.XXXXXX")
trap 'rm -rf "$work"' EXIT
archive="$work/$(basename "$source_dir").qba"
mkdir "$work/restored"

echo "== backing up $source_dir into $archive"
"$qbfs" backup "$source_dir" -o "$archive"
echo "== restoring into $work/restored"
"$qbfs" restore "$archive" -C "$work/restored"
echo "== verifying the archive against the source"
"$qbfs" verify "$archive" --against "$source_dir"
echo "== verifying the archive against the restored copy"
"$qbfs" verify "$archive" --against "$work/restored/$(basename "$source_dir")"
echo "== done: $(du -sh "$archive" | cut -f1) archive; the temporary directory is removed"
