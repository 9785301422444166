#!/bin/sh
# package.sh: packs what was built in build/package, into build/packages. The packages are the same whoever packs, and
# whenever and wherever: all times in them are that of the commit, unless SOURCE_DATE_EPOCH gives another.
set -eu
umask 022
root=$(cd "$(dirname "$0")/.." && pwd)
tree=$root/build/package
packages=$root/build/packages
export SOURCE_DATE_EPOCH="${SOURCE_DATE_EPOCH:-$(git -C "$root" log -1 --format=%ct)}"

"$root/scripts/bill.py" "$root" "$tree" >"$tree/zorvan.spdx.json"
rm -rf "$packages"
cpack --config "$tree/CPackConfig.cmake" -B "$packages" >&2
rm -rf "$packages/_CPack_Packages"

# CPack adds the sizes of folders, which each file system has its own of, to what a package takes.
unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
for package in "$packages"/*.deb; do
    rm -rf "$unpacked"
    mkdir "$unpacked"
    dpkg-deb --raw-extract "$package" "$unpacked"
    size=$(find "$unpacked" -path "$unpacked/DEBIAN" -prune -o -type f -printf '%s\n' |
        awk '{ size += int(($1 + 1023) / 1024) } END { print size }')
    sed -i "s/^Installed-Size: .*/Installed-Size: $size/" "$unpacked/DEBIAN/control"
    dpkg-deb --root-owner-group -Zgzip --build "$unpacked" "$package" >&2
done
