#!/bin/sh
# The manual's pages: every operation and every guide has one, in both forms; formatters find nothing
# wrong with them, and no link leads nowhere.
#   check-pages.sh PAGES DOCS TOOL-PAGE...
set -eu
pages=$1
docs=$2
shift 2
failed=0
complain() { echo "$*"; failed=1; }

for source in "$docs"/operations/*.md "$docs"/*.md; do
  name=$(basename "$source" .md)
  case $source in
    */operations/*) page="man3/$name.3tzvio" ;;
    */first-steps.md | */README.md) name=tzvio page=man7/tzvio.7tzvio ;;
    *) name="tzvio-$name" page="man7/$name.7tzvio" ;;
  esac
  [ -s "$pages/man/$page" ] || complain "no page $page"
  [ -s "$pages/html/$name.html" ] || complain "no page $name.html"
done

for page in "$pages"/man/*/* "$@"; do
  # Warnings begin with "mandoc: FILE:"; style is lowdown's.
  mandoc -Tlint -Wwarning "$page" | grep -vE 'STYLE|missing date|unusual' || true
done >"$pages/lint"
[ ! -s "$pages/lint" ] || { cat "$pages/lint"; failed=1; }

for page in "$pages"/html/*.html; do
  for target in $(grep -oE '(href|src)="[^"#:]+' "$page" | sed 's/.*="//'); do
    [ -e "$pages/html/$target" ] || complain "$(basename "$page"): leads to $target, which is not there"
  done
done
exit $failed
