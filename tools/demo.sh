#!/bin/sh
# Prints the example receipt through the 32-bit library on the virtual printer.
#   demo.sh JOBS [paper-out|cover-open|cutter-jam|power-off]
set -eu
cd "$(dirname "$0")/.."
jobs=${1-2}

# When the fault sets in, in printed lines, and how long it takes somebody to mend it.
case ${2-} in
  '') fault='' ;;
  paper-out) fault='--fault paper-out@7 --recover-after 3000' ;;
  cover-open) fault='--fault cover@7 --recover-after 3000' ;;
  cutter-jam) fault='--fault jam@7 --recover-after 3000' ;;
  # Back before the receipt is sent again, and not while a repeated request is under way.
  power-off) fault='--fault power-off@7 --recover-after 2500' ;;
  *) echo "FAULT is one of: paper-out cover-open cutter-jam power-off" >&2 && exit 2 ;;
esac

quietly() { "$@" >build/demo.log 2>&1 || { cat build/demo.log; exit 1; }; }

mkdir -p build
echo "Building the library and the virtual printer"
quietly cmake --preset i386 -DTZVIO_DEVELOPER_MODE=OFF -B build/demo-i386
quietly cmake --build build/demo-i386 --parallel "$jobs" --target receipt
quietly cmake --preset native -DTZVIO_DEVELOPER_MODE=OFF -B build/demo-native
quietly cmake --build build/demo-native --parallel "$jobs" --target virtual-printer

rm -rf build/demo
mkdir -p build/demo
echo "Printing examples/receipt.c on the virtual printer"
# shellcheck disable=SC2086 # a list of options
build/demo-native/tools/virtual-printer/virtual-printer --output build/demo --strict $fault \
  --port /dev/ttyS-virtual -- build/demo-i386/examples/receipt /dev/ttyS-virtual
receipt=$PWD/build/demo/receipt-001.png
[ -s "$receipt" ] || { echo "No receipt came out" >&2; exit 1; }
echo "The receipt: $receipt"
