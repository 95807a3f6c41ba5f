#!/bin/sh
# Compares what a library exports (name, kind, size of data) with the list that is kept.
#   check-exports.sh LIBRARY LIST            compare
#   check-exports.sh LIBRARY LIST --update   write the list
set -eu
library=$1
list=$2

exports() {
  # Sizes of functions are no promise; those of variables are.
  LC_ALL=C nm --dynamic --defined-only --print-size --radix=d "$library" |
    awk '{ kind = $3 == "T" ? "function" : "data"
           print $4, kind, (kind == "data" ? $2 + 0 : "-") }' |
    LC_ALL=C sort
}

if [ "${3-}" = --update ]; then
  exports >"$list"
else
  exports | diff -u "$list" -
fi

# Nothing but the C library is needed at run time.
needed=$(LC_ALL=C readelf --dynamic "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
for name in $needed; do
  case $name in
    libc.so.6 | libpthread.so.0 | libm.so.6 | ld-linux*.so.*) ;;
    *) echo "needs $name" && exit 1 ;;
  esac
done
LC_ALL=C readelf --dynamic "$library" | grep -q 'SONAME.*\[libTZVIO.so.0\]' || {
  echo "the soname is not libTZVIO.so.0"
  exit 1
}
