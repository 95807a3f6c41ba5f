#!/bin/sh
# Tells which lines and branches of the library the tests of the coverage build have run: for each
# folder, and for each file with the lines that did not run and those with a branch never taken. The
# report is build/coverage/report.txt.
set -eu
cd "$(dirname "$0")/.."
folder=build/coverage
# The edges along which an exception would leave a call are the compiler's: the library has none.
gcovr --root . --filter src/ --object-directory $folder/src --exclude-throw-branches \
  --exclude-unreachable-branches --json $folder/coverage.json
again="gcovr --root . --add-tracefile $folder/coverage.json"
{
  # Of a file: its name, lines, those that ran, their share, and the same for branches.
  $again --csv | awk -F , '
    function row(name, at) {
      printf "%-10s %6d %7.1f %9d %7.1f\n", name, lines[at], 100 * ran[at] / lines[at],
        branches[at], (branches[at] > 0) ? 100 * taken[at] / branches[at] : 100
    }
    NR > 1 {
      split($1, path, "/")
      if (!(path[2] in lines)) order[++folders] = path[2]
      for (i = 0; i < 2; ++i) {
        at = i == 0 ? path[2] : ""
        lines[at] += $2; ran[at] += $3; branches[at] += $5; taken[at] += $6
      }
    }
    END {
      printf "%-10s %6s %7s %9s %7s\n", "folder", "lines", "%", "branches", "%"
      for (i = 1; i <= folders; ++i) row(order[i], order[i])
      row("all", "")
    }'
  $again --txt
  $again --txt --branches
} | tee $folder/report.txt
