#!/bin/sh
# Prints the escape sequences' examples on the virtual printer, for the manual's pictures.
#   make-pictures.sh SHOW-EXAMPLE VIRTUAL-PRINTER ESCAPES.md OUT
set -eu
show_example=$1
printer=$2
page=$3
out=$4

paper=$(mktemp -d)
trap 'rm -rf "$paper"' EXIT
mkdir -p "$out"
for name in $(sed -n 's/.*(pictures\/\(.*\)\.png).*/\1/p' "$page"); do
  # shellcheck disable=SC2016 # the printer's own variables
  "$printer" --listen 0 --output "$paper" -- \
    sh -c 'exec "$0" "$1" "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS"' "$show_example" "$name" \
    >/dev/null
  mv "$paper"/receipt-*.png "$out/$name.png"
  rm -f "$paper"/*
done
