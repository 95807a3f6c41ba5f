#!/bin/sh
# Installs into a staging folder, as a package would, and builds a C program against what is there:
# once by pkg-config, once by CMake.
#   check-install.sh BUILD SOURCE COMPILER-FLAGS LIBDIR README
set -eu
build=$1
source=$2
flags=$3
libdir=$4
readme=$5

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cmake --install "$build" --prefix "$stage/usr" >"$stage/log" || { cat "$stage/log"; exit 1; }

for file in "$libdir/libTZVIO.so.0" "$libdir/libTZVIO.so" include/tzvio.h include/tzvio_state.h include/tzvio_unifiedpos.h \
  "$libdir/pkgconfig/tzvio.pc" "$libdir/cmake/TZVIO/TZVIOConfig.cmake"; do
  [ -e "$stage/usr/$file" ] || { echo "not installed: $file"; exit 1; }
done
[ "$(readlink "$stage/usr/$libdir/libTZVIO.so")" = libTZVIO.so.0 ] || { echo "wrong link"; exit 1; }

# The .pc file names the final prefix; --define-variable stands in for installing there.
export PKG_CONFIG_PATH="$stage/usr/$libdir/pkgconfig"
options=$(pkg-config --define-variable=prefix="$stage/usr" --cflags --libs tzvio)
# Unquoted on purpose: both are lists of options.
${CC:-cc} $flags "$source/consumer.c" -o "$stage/by-pkg-config" $options
LD_LIBRARY_PATH="$stage/usr/$libdir" "$stage/by-pkg-config"

# The README's first example must build as it stands there.
awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$readme" >"$stage/readme.c"
[ -s "$stage/readme.c" ] || { echo "no example in the README"; exit 1; }
${CC:-cc} $flags -Wall -Wextra -Werror "$stage/readme.c" -o "$stage/readme" $options

mkdir "$stage/project"
cp "$source/consumer.c" "$stage/project/"
cp "$source/CMakeLists.txt.consumer" "$stage/project/CMakeLists.txt"
cmake -S "$stage/project" -B "$stage/project/build" -DCMAKE_C_FLAGS="$flags" \
  -DCMAKE_PREFIX_PATH="$stage/usr" -DCMAKE_LIBRARY_ARCHITECTURE="" >"$stage/log" &&
  cmake --build "$stage/project/build" >>"$stage/log" || { cat "$stage/log"; exit 1; }
"$stage/project/build/consumer"
