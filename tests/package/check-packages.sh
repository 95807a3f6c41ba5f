#!/bin/sh
# Tries what is in the Debian packages, unpacked into a folder: an example of theirs is built and run
# against the library of theirs.
#   check-packages.sh FOLDER ARCHITECTURE...
set -eu
folder=$1
shift

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
fail() { echo "packages: $*" >&2; exit 1; }

for architecture in "$@"; do
  root=$stage/$architecture
  for package in "$folder"/*_"$architecture".deb; do dpkg-deb --extract "$package" "$root"; done
  triplet=$(dpkg-architecture --host-arch "$architecture" --query DEB_HOST_MULTIARCH 2>/dev/null)
  width=''
  [ "$architecture" != i386 ] || width=-m32

  for file in "usr/lib/$triplet/libTZVIO.so.0" usr/include/tzvio_unifiedpos.h usr/bin/tzvio \
    "usr/lib/tzvio/preload/lib/$triplet/libtzvio-devices.so" usr/lib/udev/rules.d/70-tzvio.rules \
    usr/share/man/man1/tzvio.1.gz usr/share/man/man3/PrintNormal.3tzvio.gz \
    usr/share/man/man7/tzvio.7tzvio.gz usr/share/doc/libtzvio-dev/html/tzvio.html \
    usr/share/bash-completion/completions/tzvio; do
    [ -e "$root/$file" ] || fail "$architecture has no $file"
  done

  export PKG_CONFIG_SYSROOT_DIR="$root" PKG_CONFIG_LIBDIR="$root/usr/lib/$triplet/pkgconfig"
  export LD_LIBRARY_PATH="$root/usr/lib/$triplet"
  examples=$root/usr/share/doc/libtzvio-dev/examples
  # shellcheck disable=SC2046 # lists of options
  ${CC:-cc} $width "$examples/open.c" -o "$stage/open" $(pkg-config --cflags --libs tzvio)
  [ "$("$stage/open" COM1 | cut -c1-3)" = '-3:' ] || fail "the example does not run on $architecture"
  "$root/usr/bin/tzvio" --help >/dev/null || fail "tzvio does not run on $architecture"
  unset LD_LIBRARY_PATH
done
echo "The packages' example and tool run"
