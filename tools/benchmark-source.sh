#!/bin/sh
# Fetches the sources of Debian's benchmark package into a folder, once: there is no 32-bit build
# of it to install beside a 64-bit compiler. Changes nothing on the machine, and needs no root.
#   benchmark-source.sh FOLDER
set -eu
folder=$1
[ ! -e "$folder/CMakeLists.txt" ] || exit 0

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/lists/partial" "$work/cache/archives/partial" "$(dirname "$folder")"

# The source packages of wherever the machine has its binary ones from.
# shellcheck disable=SC2016 # fields of apt's, not variables
apt-get indextargets 'Created-By: Packages' 'Origin: Debian' --format \
  'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(REPO_URI) $(RELEASE) $(COMPONENT)' |
  sort -u >"$work/sources.list"
[ -s "$work/sources.list" ] || { echo "apt knows no packages; have apt-get update run" >&2; exit 1; }

apt() {
  apt-get --quiet=2 -o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts=- \
    -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" -o APT::Sandbox::User=root "$@"
}
echo "Fetching the sources of benchmark"
apt update
(cd "$work" && apt source --download-only benchmark && dpkg-source --extract benchmark_*.dsc source) >"$work/log" 2>&1 ||
  { cat "$work/log" >&2; exit 1; }
mv "$work/source" "$folder"
