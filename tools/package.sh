#!/bin/sh
# Builds the Debian packages, for this machine's architecture and on amd64 for i386 as well, has lintian
# look at them, and tries what is in them.
#   package.sh JOBS
# They are then in build/package.
set -eu
cd "$(dirname "$0")/.."
jobs=${1-2}
out=$PWD/build/package
version=$(dpkg-parsechangelog --show-field Version)
native=$(dpkg --print-architecture)
architectures=$native
[ "$native" != amd64 ] || architectures="$native i386"

rm -rf "$out"
mkdir -p "$out"
for architecture in $architectures; do
  tree=$out/$architecture/tzvio-$version
  mkdir -p "$tree"
  # What is checked out, with what is new in it, and nothing that was built.
  git ls-files -z --cached --others --exclude-standard |
    tar --create --null --files-from=- | tar --extract --directory="$tree"
  options='--build=binary --no-sign'
  # Build dependencies are looked up for i386, whose compiler is this machine's own.
  [ "$architecture" = "$native" ] ||
    options="$options --host-arch=$architecture --build-profiles=cross,nocheck --no-check-builddeps"
  echo "Building the packages for $architecture"
  # shellcheck disable=SC2086 # a list
  (cd "$tree" && DEB_BUILD_OPTIONS="parallel=$jobs" dpkg-buildpackage $options) \
    >"$out/$architecture.log" 2>&1 || { tail -40 "$out/$architecture.log"; exit 1; }
  mv "$out/$architecture"/*.deb "$out/"
done

lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs "$out"/*.deb
tests/package/check-packages.sh "$out" $architectures
echo "The packages:"
ls "$out"/*_*.deb
