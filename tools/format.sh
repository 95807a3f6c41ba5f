#!/bin/sh
# Formats all C and C++ sources; with --check only says which are not.
set -eu
cd "$(dirname "$0")/.."
files=$(git ls-files --cached --others --exclude-standard '*.c' '*.h' '*.cpp')
case ${1-} in
  --check) echo "$files" | xargs clang-format --dry-run --Werror ;;
  *) echo "$files" | xargs clang-format -i ;;
esac
