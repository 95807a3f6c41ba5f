#!/bin/sh
# Runs the fuzz targets that are built, JOBS at a time, and tells what came of it, in
# build/fuzz/report.txt, too. A target that finds something ends with the input in build/fuzz/found.
#   fuzz.sh SECONDS [TARGET]      for each target on each width
set -eu
cd "$(dirname "$0")/.."
seconds=$1
chosen=${2:-*}
folder=build/fuzz
mkdir -p "$folder/found" "$folder/logs"

if [ "${3-}" = --one ]; then
  program=$2
  target=$(basename "$program" | sed s/^fuzz_//)
  width=64
  case $program in *fuzz-i386*) width=32 ;; esac
  log=$folder/logs/$target-$width
  grown=$folder/corpus/$target-$width
  mkdir -p "$grown"
  last() { sed -n "s/.*$1 *\([0-9][0-9]*\).*/\1/p" "$log" | tail -n 1; }
  # The resident memory is not watched, because that takes a thread that sleeps: in these programs
  # sleeping is the scripted kernel's. Standard output is what the library says about files. Time is
  # real here, and the machine may be busy: what takes so many seconds hangs.
  crashes=0
  "$program" -max_total_time="$seconds" -rss_limit_mb=0 -timeout=300 -close_fd_mask=1 \
    -print_final_stats=1 -artifact_prefix="$folder/found/$target-$width-" \
    "$grown" "tests/fuzz/corpus/$target" >"$log" 2>&1 || crashes=1
  printf '%-16s %5s %12s %8s %6s %6s %7s\n' "$target" "$width" "$(last number_of_executed_units:)" \
    "$(last average_exec_per_sec:)" "$(last 'cov:')" "$(last 'corp:')" "$crashes"
  [ "$crashes" = 0 ] || tail -n 40 "$log" >&2
  exit 0
fi

{
  printf '%-16s %5s %12s %8s %6s %6s %7s\n' target width executions per-s edges corpus crashes
  for program in build/fuzz/tests/fuzz/fuzz_$chosen build/fuzz-i386/tests/fuzz/fuzz_$chosen; do
    [ ! -x "$program" ] || echo "$program"
  done | xargs -P "${JOBS:-1}" -I % "$0" "$seconds" % --one
} | tee "$folder/report.txt"
awk 'NR > 1 { runs++; found += $7 } END { exit found > 0 || runs == 0 }' "$folder/report.txt"
