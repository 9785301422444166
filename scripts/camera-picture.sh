#!/bin/sh
# camera-picture.sh FILE...: writes a picture of 4000 x 3000 pixels, with shapes, smooth skies and the grain
# of a camera, to each file; options of vips may follow a name, as in 'large.jpg[Q=90]'.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
vips resize "$root/examples/samples/interlaced.png" "$work/shapes.v" 12.5 --kernel cubic
vips crop "$work/shapes.v" "$work/framed.v" 0 0 4000 3000
vips gaussnoise "$work/grain.v" 4000 3000 --sigma 5 --seed 1
vips add "$work/framed.v" "$work/grain.v" "$work/grainy.v"
vips cast "$work/grainy.v" "$work/picture.v" uchar
for file in "$@"; do
    vips copy "$work/picture.v" "$file"
done
