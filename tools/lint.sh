#!/bin/sh
# Format, then clang-tidy over all sources that the native build compiles.
set -eu
cd "$(dirname "$0")/.."
tools/format.sh --check
cmake --preset native >/dev/null
# What sources include and is made while building.
cmake --build build/native --target tools/virtual-printer/page_bytes.h >/dev/null
git ls-files --cached --others --exclude-standard 'src/*.cpp' 'tests/*.cpp' 'tools/*.cpp' |
  xargs -P "${JOBS:-2}" -n 4 clang-tidy --quiet --extra-arg=-Wno-unknown-warning-option -p build/native 2>build/native/tidy.log ||
  { grep -v 'warnings generated' build/native/tidy.log; exit 1; }
echo "lint: clean"
