#!/bin/sh
# Prints the example receipt through the 32-bit library on the virtual printer.
#   demo.sh JOBS LINK FAULT PAGE
#     LINK   tcp, serial, usb or parallel
#     FAULT  paper-out, cover-open, cutter-jam, power-off or connection-lost; empty: none
#     PAGE   1: the printer shows itself in a browser, and stays; empty: not
set -eu
cd "$(dirname "$0")/.."
jobs=${1-2}

case ${2-tcp} in
  tcp) line='--listen 0' ;;
  serial) line='--port /dev/ttyS-virtual' ;;
  usb) line='--port /dev/usb/lp-virtual' ;;
  parallel) line='--port /dev/parport-virtual' ;;
  *) echo "LINK is one of: tcp serial usb parallel" >&2 && exit 2 ;;
esac

# When the fault sets in, in printed lines or received bytes, and how long it takes somebody to mend
# it.
case ${3-} in
  '') fault='' ;;
  paper-out) fault='--fault paper-out@7 --recover-after 3000' ;;
  cover-open) fault='--fault cover@7 --recover-after 3000' ;;
  cutter-jam) fault='--fault jam@7 --recover-after 3000' ;;
  # Back before the receipt is sent again, and not while a repeated request is under way.
  power-off) fault='--fault power-off@7 --recover-after 2500' ;;
  connection-lost) fault='--fault connection-lost@2101B --recover-after 2500' ;;
  *)
    echo "FAULT is one of: paper-out cover-open cutter-jam power-off connection-lost" >&2
    exit 2
    ;;
esac

page=''
[ "${4-}" != 1 ] || page='--page --stay'

quietly() { "$@" >build/demo.log 2>&1 || { cat build/demo.log; exit 1; }; }

mkdir -p build
echo "Building the library and the virtual printer"
quietly cmake --preset i386 -DTZVIO_DEVELOPER_MODE=OFF -DTZVIO_CLI=OFF -B build/demo-i386
quietly cmake --build build/demo-i386 --parallel "$jobs" --target receipt
quietly cmake --preset native -DTZVIO_DEVELOPER_MODE=OFF -DTZVIO_CLI=OFF -DTZVIO_MANUAL=OFF \
  -B build/demo-native
quietly cmake --build build/demo-native --parallel "$jobs" --target virtual-printer

rm -rf build/demo
mkdir -p build/demo
echo "Printing examples/receipt.c on the virtual printer"
[ -z "$page" ] || echo "Open the page in a browser; Ctrl-C ends the printer"
# shellcheck disable=SC2016,SC2086 # the printer's own variables; lists of options
build/demo-native/tools/virtual-printer/virtual-printer $line --output build/demo --strict $fault $page -- \
  sh -c 'exec build/demo-i386/examples/receipt "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS"'
receipt=$PWD/build/demo/receipt-001.png
[ -s "$receipt" ] || { echo "No receipt came out" >&2; exit 1; }
echo "The receipt: $receipt"
