#!/bin/sh
# Installs what a make target needs on Debian 12, and says what. Does nothing when all is there.
#   install-dependencies.sh demo|test|bench|fuzz|manual|package|coverage|valgrind|lint
set -eu

build='g++-multilib gcc-multilib cmake ninja-build pkg-config'
tool='libcli11-dev nlohmann-json3-dev'
printer='libcairo2-dev libpango1.0-dev libcli11-dev libzint-dev libcpp-httplib-dev fonts-dejavu-core'
scanners='libzxing-dev libzbar-dev'
browser='chromium chromium-driver'
manual='python3 lowdown mandoc'
languages='mono-mcs mono-runtime default-jdk-headless libjna-java'
everything="$build $tool $printer $scanners $manual $languages googletest"
case ${1-} in
  demo) packages="$build $printer" ;;
  test) packages="$everything $browser iproute2" ;;
  bench) packages="$everything dpkg-dev" ;;
  # With it come clang's run-time libraries, for both widths.
  fuzz) packages="$everything clang libclang-rt-14-dev" ;;
  manual) packages="$everything" ;;
  package)
    packages="$build $tool $printer $manual debhelper dpkg-dev fakeroot lintian"
    # What the 32-bit packages depend on is looked up in packages of that architecture.
    [ "$(dpkg --print-architecture)" != amd64 ] ||
      packages="$packages binutils-i686-linux-gnu libc6:i386 libgcc-s1:i386 libstdc++6:i386"
    ;;
  coverage) packages="$everything gcovr iproute2" ;;
  valgrind)
    packages="$everything iproute2 valgrind"
    # Valgrind needs to know the 32-bit C library's own functions by name.
    [ "$(dpkg --print-architecture)" != amd64 ] || packages="$packages libc6-dbg:i386"
    ;;
  lint) packages="$everything clang-format clang-tidy" ;;
  *) echo "usage: $0 demo|test|bench|fuzz|manual|package|coverage|valgrind|lint" >&2 && exit 2 ;;
esac

missing=''
for package in $packages; do
  dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null |
    grep -qx installed || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=''
if [ "$(id -u)" != 0 ]; then
  command -v sudo >/dev/null || {
    echo "Needed packages are missing; have them installed: apt-get install$missing" >&2
    exit 1
  }
  as_root=sudo
fi
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
case $missing in *:i386*) $as_root dpkg --add-architecture i386 ;; esac
$as_root apt-get update --quiet=2
# shellcheck disable=SC2086 # a list of names
$as_root apt-get install --quiet=2 --no-install-recommends --yes $missing
