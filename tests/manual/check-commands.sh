#!/bin/sh
# The commands that the page about trying a till shows, as they stand there: the first time what they
# compare with is written down, the second time it must be the same again.
#   check-commands.sh PAGE VIRTUAL-PRINTER RECEIPT-PROGRAM
set -eu
page=$1
printer=$2
receipt=$3

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# shellcheck disable=SC2016 # the printer's own variables
printf '#!/bin/sh\nexec %s "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS"\n' "$receipt" >"$folder/till"
chmod +x "$folder/till"
awk '/^```sh$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$page" >"$folder/commands"
PATH=$(dirname "$printer"):$PATH
cd "$folder"

write_down() { cp "$2" "$1"; }
(diff() { write_down "$@"; }; . ./commands) >/dev/null
rm -rf receipts calls writes
(set -e; . ./commands) >/dev/null
[ -s expected-receipt.txt ] && [ -s expected-writes ]
