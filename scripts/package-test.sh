#!/bin/sh
# package-test.sh [SUITE...]: as a user of the packages would: builds them in one bare Debian, installs them in
# another that has nothing but a compiler, builds the program of the README with CMake and with pkg-config,
# runs both, removes everything and looks for what is left. As root.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
. "$root/scripts/bare-debian.sh"
[ $# -gt 0 ] || set -- bookworm trixie

# What the user does, in the bare system; what is installed there before and after must be the same.
cat_user_steps() {
    cat <<'STEPS'
set -eu
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends cmake g++ make pkg-config shared-mime-info >/dev/null
find / -xdev -path /proc -prune -o -path /root -prune -o -name '*zorvan*' -print >/root/before
apt-get install -y -qq --no-install-recommends /root/packages/*.deb >/dev/null
cd /root/zorvan/examples/readme
samples=/root/zorvan/examples/samples
cmake -S . -B /root/by-cmake -D CMAKE_BUILD_TYPE=Release >/dev/null
cmake --build /root/by-cmake >/dev/null
mkdir -p /root/thumbnails-1 /root/thumbnails-2
/root/by-cmake/readme $samples /root/thumbnails-1
# shellcheck disable=SC2046
g++ -std=c++20 readme.cpp $(pkg-config --cflags --libs zorvan-files zorvan-media) -o /root/by-pkg-config
/root/by-pkg-config $samples /root/thumbnails-2
diff -r /root/thumbnails-1 /root/thumbnails-2
[ "$(ls /root/thumbnails-1 | wc -l)" -gt 20 ]
shelf --version || shelf --help >/dev/null
apt-get purge -y -qq $(dpkg-query -W -f '${Package}\n' '*zorvan*' 2>/dev/null) >/dev/null
find / -xdev -path /proc -prune -o -path /root -prune -o -name '*zorvan*' -print >/root/after
diff /root/before /root/after
STEPS
}

for suite in "$@"; do
    builder=$root/build/matrix/$suite
    user=$root/build/matrix/$suite-user
    make_bare_debian "$suite" "$builder" >"$builder.log" 2>&1
    put_checkout "$root" "$builder"
    run_in "$builder" ./run package >"$builder-package.log" 2>&1 || {
        tail -n 30 "$builder-package.log" >&2
        echo "$suite: the packages cannot be built" >&2
        exit 1
    }
    rm -rf --one-file-system "$user"
    make_bare_debian "$suite" "$user" >>"$builder.log" 2>&1
    put_checkout "$root" "$user"
    cp -r "$builder/root/zorvan/build/packages" "$user/root/"
    cat_user_steps >"$user/root/steps"
    run_in "$user" sh /root/steps
    echo "$suite: $(ls "$user"/root/packages/*.deb | wc -l) packages installed, used and removed without a trace"
done
