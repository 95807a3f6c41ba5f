#!/bin/sh
# Runs the 32-bit test programs under valgrind's memcheck, each once and JOBS (2) of them side by side,
# and tells what came of it, in build/valgrind/report.txt, too. What memcheck and the tests said lies
# in build/valgrind/logs.
#   valgrind.sh [PROGRAM]...      those with these names; otherwise all
set -eu
cd "$(dirname "$0")/.."
folder=build/valgrind
# The first three never load the library themselves: what two of them start prints in real time on a
# printer of another width, and the third starts itself anew by a name that is valgrind's own here. The
# last looks for growth of its process, which is memcheck's.
left_out='e2e_tests cli_tests device_preload_tests scripted_soak_tests'
# They measure real time, so nothing of ours runs beside them.
alone='pty_tests socket_tests net_namespace_tests hand_over_tests unload_tests concurrency_tests'

is_in() { case " $2 " in *" $1 "*) ;; *) false ;; esac; }

# The tests that cannot hold under valgrind, as --gtest_filter takes them.
not_run() {
  case $1 in
    # It computes in 64 bits where the processor has 80, and so these halves are lost.
    unit_tests) echo 'twips_in_extended_precision/*' ;;
    # Its calloc() writes zeros, where the C library's takes pages that are zero already.
    image_unit_tests) echo 'BmpRaster.however_wide_that_is_blank_touches_no_memory' ;;
  esac
}

# The command's arguments: those that ctest gives.
arguments() {
  case $1 in
    fuzz_*) echo "tests/fuzz/corpus/${1#fuzz_}" ;;
    *_tests) echo "--gtest_brief=1 --gtest_filter=*-$(not_run "$1")" ;;
  esac
}

tests_in() {
  case $1 in
    fuzz_*) sed -n 's/^\([0-9]*\) inputs$/\1/p' "$2" ;;
    *_tests) sed -n 's/^\[==========\] \([0-9]*\) tests\{0,1\} from .* ran.*/\1/p' "$2" ;;
    *) echo 1 ;;
  esac
}

errors_in() { sed -n 's/.*ERROR SUMMARY: \([0-9,]*\) errors.*/\1/p' "$1" | tr -d , | tail -n 1; }

# Blocks that nothing points to, or only something into their middle.
leaks_in() {
  sed -n 's/.*\(definitely\|indirectly\|possibly\) lost:.* in \([0-9,]*\) blocks/\2/p' "$1" | tr -d , |
    awk '{ blocks += $1 } END { print blocks + 0 }'
}

run() {
  name=$(basename "$1") log=$folder/logs/$name.memcheck output=$folder/logs/$name.output
  started=$(date +%s) result=ok
  set -f
  # A forked child ends in the middle of a test, so what it still holds is no leak. Where a program
  # has a malloc() of its own that lets allocations fail, that one has to stay; libc's behind it is
  # watched.
  # shellcheck disable=SC2046 # a list of arguments
  valgrind --leak-check=full --show-leak-kinds=definite,possible --errors-for-leak-kinds=none \
    --child-silent-after-fork=yes --soname-synonyms=somalloc=nouserintercepts --fair-sched=try \
    --num-callers=25 --suppressions=tools/valgrind.supp --log-file="$log" \
    "$1" $(arguments "$name") >"$output" 2>&1 || result=FAILED
  errors=$(errors_in "$log") leaks=$(leaks_in "$log")
  [ "$errors$leaks" = 00 ] || result=FAILED
  printf '%-22s %6s %7s %6s %8s  %s\n' "$name" "$(tests_in "$name" "$output")" "$errors" "$leaks" \
    $(($(date +%s) - started)) "$result"
}

# Those of the programs that are asked for.
programs() {
  find build/i386/tests build/i386/tools -type f -perm /111 \
    \( -name '*_tests' -o -name 'fuzz_*' -o -path '*/abi/*' ! -name '*.*' \) | LC_ALL=C sort |
    while read -r program; do
      name=$(basename "$program")
      if is_in "$name" "${*:-$name}" && ! is_in "$name" "$left_out"; then echo "$program"; fi
    done
}

if [ "${1-}" = --one ]; then
  run "$2"
  exit
fi
mkdir -p "$folder/logs"
{
  printf '%-22s %6s %7s %6s %8s\n' program tests errors leaks seconds
  programs "$@" | while read -r program; do
    is_in "$(basename "$program")" "$alone" || echo "$program"
  done | xargs -n 1 -P "${JOBS:-2}" tools/valgrind.sh --one
  programs "$@" | while read -r program; do
    ! is_in "$(basename "$program")" "$alone" || run "$program" </dev/null
  done
} | tee "$folder/report.txt"
awk 'NR > 1 { runs++; failed += $NF != "ok" } END { exit failed > 0 || runs == 0 }' "$folder/report.txt"
