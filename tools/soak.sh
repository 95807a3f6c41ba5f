#!/bin/sh
# Runs the soak programs of the native build for long: SOAK_RECEIPTS on each link with a model of a
# printer, SOAK_PRINTER_RECEIPTS with the virtual printer in real time, with the faults of SEED, on the
# links whose names begin with LINK. The report is build/soak/report.txt.
set -eu
cd "$(dirname "$0")/.."
mkdir -p build/soak
TZVIO_SOAK_REPORT=$PWD/build/soak/report.txt
# The network's other name.
[ "${LINK-}" != tcp ] || LINK=network
export TZVIO_SOAK_REPORT SEED="${SEED-1}" LINK="${LINK-}"
: >"$TZVIO_SOAK_REPORT"
failed=0
SOAK_RECEIPTS=${SOAK_RECEIPTS:-20000} build/native/tests/soak/scripted_soak_tests --gtest_brief=1 || failed=1
SOAK_PRINTER_RECEIPTS=${SOAK_PRINTER_RECEIPTS:-300} build/native/tests/soak/program_soak_tests --gtest_brief=1 || failed=1
TZVIO_SECONDS=${SOAK_SECONDS:-60} build/native/tests/soak/concurrency_tests --gtest_brief=1 >/dev/null || failed=1
echo "The report: $TZVIO_SOAK_REPORT"
exit $failed
