#!/bin/sh
# switches.sh: builds the library without all that can be left out of it, on a machine that seems to have nothing of
# that, looks that no trace of it is in what is installed, and that whoever asks for it is told what to switch on.
# Takes some minutes; the tree stays in build/without.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
tree=$root/build/without
prefix=$tree/prefix
left_out='mpv|libav(codec|format|util|filter|device)|libsw(scale|resample)|libheif|libsecret-1'

fail() {
    echo "switches: $*" >&2
    exit 1
}

mkdir -p "$tree"
pkg_config=$(command -v pkg-config)
cat >"$tree/pkg-config" <<TEXT
#!/bin/sh
for word; do
    if printf '%s' "\$word" | grep -qE '^($left_out)( |$)'; then
        echo "asked for \$word" >>"$tree/asked"
        exit 1
    fi
done
exec $pkg_config "\$@"
TEXT
chmod +x "$tree/pkg-config"
rm -rf "$tree/asked" "$prefix"

cmake -G Ninja -S "$root" -B "$tree" -D PKG_CONFIG_EXECUTABLE="$tree/pkg-config" \
    -D ZORVAN_TESTS=OFF -D ZORVAN_WERROR="${ZORVAN_WERROR:-OFF}" \
    -D ZORVAN_PLAYBACK=OFF -D ZORVAN_MOVIES=OFF -D ZORVAN_HEIC=OFF -D ZORVAN_SECRET_SERVICE=OFF >/dev/null
[ ! -f "$tree/asked" ] || fail "$(cat "$tree/asked")"
cmake --build "$tree" --parallel "$(nproc)" -- --quiet
cmake --install "$tree" --prefix "$prefix" >/dev/null
! ninja -C "$tree" -t deps | grep -E "/include/(.*/)?($left_out)/" || fail 'a header was included'

# No library or file of a component, nothing that is linked, and no name that opens it.
traces='mpv-playback|ffmpeg|heif-pictures|secret-service-keyring|MpvPlayback|FFmpegMedia|HeifPictures|SecretServiceKeyring'
! find "$prefix" "$tree/debian" | grep -E "$traces|debian/playback" || fail 'it is installed'
! grep -rE "add_library.*($traces)" "$prefix" || fail 'the CMake package has it'
functions='zorvan(MakePlayerEngine|GrabFrame|DescribeMedia|MakeHeifReader|EncodeHeic|HasHeicEncoder|AskSecretService)'
libraries=$(find "$prefix" -name 'libzorvan-*.so')
[ "$(echo "$libraries" | wc -l)" -ge 30 ] || fail 'hardly any library is installed'
for library in $libraries; do
    ! objdump -p "$library" | grep -E "NEEDED +(lib)?($left_out)" || fail "$library is linked with it"
    ! strings -a "$library" | grep -E "$traces|$functions" || fail "$library has its name"
done

# consumer WANTED...: configures the program with these components.
consumer() {
    wanted=$(echo "$*" | tr ' ' ';')
    rm -rf "$tree/consumer"
    cmake -G Ninja -S "$root/tests/install/without" -B "$tree/consumer" -D CMAKE_PREFIX_PATH="$prefix" \
        -D WANTED="$wanted" 2>&1
}
while read -r switch components; do
    for component in $components; do
        ! said=$(consumer "$component") || fail "$component is there"
        echo "$said" | tr -s ' \n' ' ' | grep -q "without $component, which wants -D$switch=ON" ||
            fail "$component is refused so: $said"
    done
done <<TEXT
ZORVAN_PLAYBACK Playback MediaPlayback MpvPlayback
ZORVAN_MOVIES MediaAssets FFmpegMedia
ZORVAN_HEIC HeifPictures
ZORVAN_SECRET_SERVICE SecretServiceKeyring
TEXT

consumer Media UserKeychain >"$tree/said" || fail "$(cat "$tree/said")"
cmake --build "$tree/consumer" -- --quiet
# A bus that is said to be there, so that its keyring is asked for.
export XDG_DATA_HOME="$tree/data" XDG_RUNTIME_DIR="$tree" HOME="$tree" DBUS_SESSION_BUS_ADDRESS="unix:path=$tree/bus"
printf 'no movie at all' >"$tree/movie.mp4"
"$tree/consumer/without" "$root/examples/samples" "$tree/movie.mp4" >"$tree/answers" 2>"$tree/log"
cat >"$tree/expected" <<'TEXT'
player failed: 11, rate 0
movie readable: 0
picture: the decoder for this format is not installed
picture read: 0, written: 0
secret kept: 1
TEXT
diff "$tree/expected" "$tree/answers" || fail 'the answers differ'
for switch in ZORVAN_PLAYBACK ZORVAN_MOVIES ZORVAN_HEIC ZORVAN_SECRET_SERVICE; do
    grep -q "needs a build of the library with -D$switch=ON\$" "$tree/log" ||
        fail "the log does not name $switch: $(cat "$tree/log")"
done
echo 'Nothing of what was left out is there, and programs are told what they miss.'
