#!/bin/sh
# Installs into a staging folder, as a package would, and builds C programs against what is there:
# once by pkg-config, once by CMake.
#   check-install.sh BUILD SOURCE COMPILER-FLAGS LIBDIR README EXAMPLES
set -eu
build=$1
source=$2
flags=$3
libdir=$4
readme=$5
examples=$6

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cmake --install "$build" --prefix "$stage/usr" >"$stage/log" || { cat "$stage/log"; exit 1; }

for file in "$libdir/libTZVIO.so.0" "$libdir/libTZVIO.so" include/tzvio.h include/tzvio_state.h \
  include/tzvio_unifiedpos.h "$libdir/pkgconfig/tzvio.pc" "$libdir/cmake/TZVIO/TZVIOConfig.cmake"; do
  [ -e "$stage/usr/$file" ] || { echo "not installed: $file"; exit 1; }
done
[ "$(readlink "$stage/usr/$libdir/libTZVIO.so")" = libTZVIO.so.0 ] || { echo "wrong link"; exit 1; }

# The .pc file names the final prefix; --define-variable stands in for installing there.
export PKG_CONFIG_PATH="$stage/usr/$libdir/pkgconfig"
options=$(pkg-config --define-variable=prefix="$stage/usr" --cflags --libs tzvio)
build_by_pkg_config() {
  program=$1
  shift
  # Unquoted on purpose: lists of options.
  # shellcheck disable=SC2086
  ${CC:-cc} $flags -Wall -Wextra -Werror "$@" -o "$stage/$program" $options
}

build_by_cmake() {
  cmake -S "$1" -B "$stage/build-$2" -DCMAKE_C_FLAGS="$flags" -DCMAKE_PREFIX_PATH="$stage/usr" \
    -DCMAKE_LIBRARY_ARCHITECTURE="" >"$stage/log" &&
    cmake --build "$stage/build-$2" >>"$stage/log" || { cat "$stage/log"; exit 1; }
}

build_by_pkg_config by-pkg-config "$source/consumer.c"
LD_LIBRARY_PATH="$stage/usr/$libdir" "$stage/by-pkg-config"

# The README's first example must build as it stands there.
awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$readme" >"$stage/readme.c"
[ -s "$stage/readme.c" ] || { echo "no example in the README"; exit 1; }
build_by_pkg_config readme "$stage/readme.c"

mkdir "$stage/project"
cp "$source/consumer.c" "$stage/project/"
cp "$source/CMakeLists.txt.consumer" "$stage/project/CMakeLists.txt"
build_by_cmake "$stage/project" consumer
"$stage/build-consumer/consumer"

# The examples: each with those of its fellows that have no main().
for example in "$examples"/*.c; do
  grep -q '^int main(' "$example" || continue
  build_by_pkg_config "example-$(basename "$example" .c)" "$example" \
    $(grep -L '^int main(' "$examples"/*.c)
done
build_by_cmake "$examples" examples
for program in receipt status stored-logo printers open; do
  [ -x "$stage/build-examples/$program" ] || { echo "not built: $program"; exit 1; }
done
