#!/usr/bin/env bash
# Backing up and restoring a real tree with qbfs, against the machine's
# standard `tar` (the Debian package) doing the same copy.
#
# What is timed, in rounds that alternate the two tools (the first tool of
# a round changes every round, so neither always meets a cooler cache):
#   qbfs pipe     qbfs backup SRC -o - | qbfs restore - -C OUT
#                 (both processes run at once, like tar's pipeline)
#   qbfs backup   qbfs backup SRC -o ARCHIVE            (into the scratch tmpfs)
#   qbfs restore  qbfs restore ARCHIVE -C OUT
#   tar pipe      tar -C PARENT -cf - BASE | tar -C OUT -xf -
#   tar -c, tar -x  the same through a file, for the separate figures
# Every figure is the median of the rounds (wall-clock seconds, and CPU
# seconds, user + system of every process of the command); "ratio" is the
# median over the rounds of qbfs/tar measured in the same round, which
# holds up better than a ratio of medians on a machine shared with other
# work. One untimed pass of each tool warms the page cache first.
#
# Correctness: after the last round every copy (qbfs pipe, qbfs through a
# file, tar) is compared with SRC byte for byte (diff -r --no-dereference)
# and by a `find -printf` listing of type, mode, owner, group, link target
# and modification time. qbfs must keep times to the nanosecond; tar's
# default archive format keeps whole seconds, so its copy is compared to
# the second. Directory sizes are left out (they depend on the file system).
#
# Memory: the peak resident size (/usr/bin/time %M) of `qbfs backup` and
# `qbfs restore` of generated trees of 10,000 and 100,000 small files (100
# files a directory, 64 bytes each). The backup's peak must not grow with
# the tree.
#
# Usage: bench/archive/bench_archive.sh [-n ROUNDS] [-s SRC] [-t SCRATCH] [-b QBFS] [-c] [-m|-M]
#   -n ROUNDS   timed rounds (default 3)
#   -s SRC      the tree to copy (default /usr/include); it must not be "/"
#   -t SCRATCH  an existing directory to work in, ideally on a tmpfs; by
#               default a tmpfs is mounted for the run (needs root) and
#               unmounted at the end. Everything made is removed at the end.
#   -b QBFS     the qbfs binary (default build/release/bin/qbfs of this tree,
#               built with the release preset)
#   -c          copy SRC into the scratch directory first (cp -a) and time
#               that copy: on a machine whose memory reclaim evicts the page
#               cache of SRC between runs, every figure then comes from memory
#   -m          the memory measurement only; -M skips it
#
# Needs: bash, GNU tar, diff, find, python3 (to generate the trees), and
# /usr/bin/time (Debian package `time`: apt-get install time). The bench is
# not run by CI.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
rounds=3
src=/usr/include
scratch=""
qbfs="$root/build/release/bin/qbfs"
timing=1
memory=1
stage=0

while getopts "n:s:t:b:cmMh" opt; do
  case $opt in
    n) rounds=$OPTARG ;;
    s) src=$OPTARG ;;
    t) scratch=$OPTARG ;;
    b) qbfs=$OPTARG ;;
    c) stage=1 ;;
    m) timing=0 ;;
    M) memory=0 ;;
    h) sed -n '2,/^set -euo/p' "$0" | sed '$d; s/^# \{0,1\}//'; exit 0 ;;
    *) exit 2 ;;
  esac
done

die() { echo "bench_archive: $*" >&2; exit 1; }
[[ -x /usr/bin/time ]] || die "/usr/bin/time is missing (apt-get install time)"
[[ -x $qbfs ]] || die "no qbfs at $qbfs (cmake --preset release && cmake --build --preset release --target qbfs qbposix)"
command -v tar >/dev/null || die "tar is missing"
[[ $rounds =~ ^[1-9][0-9]*$ ]] || die "the rounds must be a positive number"
src=$(realpath "$src")
[[ -d $src && $src != / ]] || die "the source must be a directory other than /"

mounted=""
work=""
cleanup() {
  if [[ -n $work && -d $work ]]; then rm -rf --one-file-system "$work"; fi
  if [[ -n $mounted ]]; then umount "$mounted" && rmdir "$mounted"; fi
}
trap cleanup EXIT

src_bytes=$(du -sb "$src" | cut -f1)
if [[ -z $scratch ]]; then
  [[ $(id -u) -eq 0 ]] || die "mounting a tmpfs needs root; give a scratch directory with -t"
  # Two archives, four copies of the source and maybe a staged one, and room.
  size_mb=$(( src_bytes * 8 / 1000000 + 1024 ))
  mounted=$(mktemp -d /tmp/bench_archive.XXXXXX)
  mount -t tmpfs -o "size=${size_mb}m" tmpfs "$mounted"
  scratch=$mounted
fi
[[ -d $scratch ]] || die "no directory $scratch"
# Two archives, four copies of the source and maybe a staged one at once;
# the generated trees need far less.
need_kb=$(( timing ? src_bytes * (stage ? 7 : 6) / 1024 : 200000 ))
avail_kb=$(df -Pk "$scratch" | awk 'NR == 2 {print $4}')
(( avail_kb > need_kb )) || die "$scratch has $avail_kb KB free; the bench needs about $need_kb KB"
work=$(mktemp -d "$scratch/bench_archive.XXXXXX")
if (( stage && timing )); then
  mkdir "$work/source"
  cp -a "$src" "$work/source/"
  src="$work/source/$(basename "$src")"
fi
parent=$(dirname "$src")
base=$(basename "$src")

# seconds of wall clock between two $EPOCHREALTIME readings
elapsed() { python3 -c "print(f'{$2 - $1:.3f}')"; }

# run NAME COMMAND: runs COMMAND with bash, records its wall-clock and CPU
# seconds in $work/times/NAME (one line a round). Stops the bench when it fails.
run() {
  local name=$1 cmd=$2 t0 t1 cpu
  t0=$EPOCHREALTIME
  if ! /usr/bin/time -f '%U %S' -o "$work/cpu" bash -o pipefail -c "$cmd"; then
    [[ -f $work/qbfs.log ]] && tail -5 "$work/qbfs.log" >&2
    die "'$cmd' failed"
  fi
  t1=$EPOCHREALTIME
  cpu=$(awk '{printf "%.2f", $1 + $2}' "$work/cpu")
  echo "$(elapsed "$t0" "$t1") $cpu" >>"$work/times/$name"
}

fresh() { rm -rf "$1" && mkdir -p "$1"; }

median() {  # the median of the numbers on standard input
  sort -g | awk '{v[NR] = $1} END {if (NR % 2) print v[(NR + 1) / 2]; else printf "%.3f\n", (v[NR / 2] + v[NR / 2 + 1]) / 2}'
}
column_of() { awk -v c="$2" '{print $c}' "$work/times/$1"; }

# The listing compared between the source and a copy; $2 "s" cuts times to
# whole seconds.
listing() {
  (cd "$1" && find . -printf '%y %m %U %G %T@ %P -> %l\n' |
    awk -v whole="${2:-}" '{ if (whole == "s") sub(/\..*/, "", $5); print }' | sort)
}

check_copy() {  # check_copy WHAT DIR [s]
  local what=$1 copy=$2
  if ! diff -r --no-dereference "$src" "$copy" >"$work/diff" 2>&1; then
    head -20 "$work/diff" >&2
    die "$what: the copy's contents differ from $src"
  fi
  listing "$src" "${3:-}" >"$work/list.src"
  listing "$copy" "${3:-}" >"$work/list.copy"
  if ! diff "$work/list.src" "$work/list.copy" >"$work/diff"; then
    head -20 "$work/diff" >&2
    die "$what: the copy's metadata differ from $src"
  fi
  echo "  $what: identical ($(wc -l <"$work/list.src") objects: contents, types, modes, owners, times)"
}

if (( timing )); then
  mkdir -p "$work/times"
  objects=$(find "$src" | wc -l)
  data_bytes=$(find "$src" -type f -printf '%s\n' | awk '{s += $1} END {print s + 0}')
  archive="$work/a.qba"
  log="'$work/qbfs.log'"  # the tools' closing summaries
  qpipe="'$qbfs' backup -q '$src' -o - 2>>$log | '$qbfs' restore -q - -C '$work/qpipe' >>$log 2>&1"
  qback="'$qbfs' backup -q '$src' -o '$archive' 2>>$log"
  qrest="'$qbfs' restore -q '$archive' -C '$work/qfile' >>$log 2>&1"
  tpipe="tar -C '$parent' -cf - '$base' | tar -C '$work/tar' -xf -"
  tcreate="tar -C '$parent' -cf '$work/a.tar' '$base'"
  textract="tar -C '$work/tarfile' -xf '$work/a.tar'"

  echo "source: $src, $objects objects, $data_bytes bytes of file data; $rounds rounds; scratch $work"
  echo "qbfs: $qbfs"
  # Warm-up, untimed.
  fresh "$work/qpipe"; fresh "$work/tar"
  if ! bash -o pipefail -c "$qpipe" || ! bash -o pipefail -c "$tpipe"; then die "the warm-up failed"; fi

  for (( r = 1; r <= rounds; ++r )); do
    fresh "$work/qpipe"; fresh "$work/qfile"; fresh "$work/tar"; fresh "$work/tarfile"
    rm -f "$archive" "$work/a.tar"
    if (( r % 2 )); then
      run qpipe "$qpipe"; run tpipe "$tpipe"
      run qbackup "$qback"; run tcreate "$tcreate"
      run qrestore "$qrest"; run textract "$textract"
    else
      run tpipe "$tpipe"; run qpipe "$qpipe"
      run tcreate "$tcreate"; run qbackup "$qback"
      run textract "$textract"; run qrestore "$qrest"
    fi
    echo "  round $r: qbfs pipe $(tail -1 "$work/times/qpipe" | cut -d' ' -f1) s," \
         "tar pipe $(tail -1 "$work/times/tpipe" | cut -d' ' -f1) s," \
         "qbfs backup $(tail -1 "$work/times/qbackup" | cut -d' ' -f1) s," \
         "qbfs restore $(tail -1 "$work/times/qrestore" | cut -d' ' -f1) s"
  done

  echo "checking the copies of the last round against $src"
  check_copy "qbfs pipe" "$work/qpipe/$base"
  check_copy "qbfs through a file" "$work/qfile/$base"
  check_copy "tar pipe (times to the second)" "$work/tar/$base" s

  # ratio of two time files, round by round, then the median
  ratio() { paste -d' ' <(column_of "$1" 1) <(column_of "$2" 1) | awk '{printf "%.3f\n", $1 / $2}' | median; }
  line() {  # line LABEL NAME [ANCHOR]
    local wall cpu
    wall=$(column_of "$2" 1 | median)
    cpu=$(column_of "$2" 2 | median)
    printf '%-14s %7.3f s %7.2f s cpu %9.0f objects/s %8.1f MB/s' "$1" "$wall" "$cpu" \
      "$(python3 -c "print($objects / $wall)")" "$(python3 -c "print($data_bytes / 1e6 / $wall)")"
    if [[ -n ${3:-} ]]; then printf '   qbfs/tar %.2f' "$(ratio "$2" "$3")"; fi
    printf '\n'
  }
  echo
  echo "median of $rounds rounds (wall, cpu = user + system of all its processes):"
  line "tar pipe" tpipe
  line "qbfs pipe" qpipe tpipe
  line "tar -c file" tcreate
  line "qbfs backup" qbackup tcreate
  line "tar -x file" textract
  line "qbfs restore" qrestore textract
  b=$(column_of qbackup 1 | median); rs=$(column_of qrestore 1 | median); tp=$(column_of tpipe 1 | median)
  printf 'qbfs backup + restore through a file: %.3f s, %.2f x the tar pipe\n' \
    "$(python3 -c "print($b + $rs)")" "$(python3 -c "print(($b + $rs) / $tp)")"
  rm -rf "$work/qpipe" "$work/qfile" "$work/tar" "$work/tarfile" "$archive" "$work/a.tar"
fi

if (( memory )); then
  echo
  echo "peak memory (maximum resident set) for generated trees of small files:"
  declare -A backup_peak
  for count in 10000 100000; do
    tree="$work/tree$count"
    python3 - "$tree" "$count" <<'EOF'
import os, sys
top, count = sys.argv[1], int(sys.argv[2])
per_dir, payload = 100, b"x" * 63 + b"\n"
for d in range(0, count, per_dir):
    folder = os.path.join(top, "d%05d" % (d // per_dir))
    os.makedirs(folder)
    for f in range(d, min(d + per_dir, count)):
        with open(os.path.join(folder, "f%06d" % f), "wb") as out:
            out.write(payload)
EOF
    /usr/bin/time -f '%M' -o "$work/mem" "$qbfs" backup -q "$tree" -o "$work/m.qba" 2>/dev/null ||
      die "the backup of $count files failed"
    backup_kb=$(tail -1 "$work/mem")
    mkdir -p "$work/mout"
    /usr/bin/time -f '%M' -o "$work/mem" "$qbfs" restore -q "$work/m.qba" -C "$work/mout" >/dev/null ||
      die "the restore of $count files failed"
    restore_kb=$(tail -1 "$work/mem")
    printf '  %7d files in %4d directories: qbfs backup %6d KB, qbfs restore %6d KB\n' \
      "$count" $(( count / 100 )) "$backup_kb" "$restore_kb"
    backup_peak[$count]=$backup_kb
    rm -rf "$tree" "$work/mout" "$work/m.qba"
  done
  # Allow 10% for allocator noise.
  if (( backup_peak[100000] * 10 > backup_peak[10000] * 11 )); then
    echo "  the backup's peak memory grows with the tree: ${backup_peak[10000]} KB -> ${backup_peak[100000]} KB"
    exit 1
  fi
  echo "  the backup's peak memory does not grow with the tree"
fi
