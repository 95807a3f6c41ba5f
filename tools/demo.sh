#!/bin/sh
# Prints the example receipt through the 32-bit library on the virtual printer.
#   demo.sh JOBS
set -eu
cd "$(dirname "$0")/.."
jobs=${1-2}

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
build/demo-native/tools/virtual-printer/virtual-printer --output build/demo --strict \
  --port /dev/ttyS-virtual -- build/demo-i386/examples/receipt /dev/ttyS-virtual
echo "The receipt: $PWD/build/demo/receipt-001.png"
