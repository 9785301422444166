#!/bin/sh
# demo.sh [FOLDER]: makes a contact sheet of FOLDER, or of the sample photos, and says where it is.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
shelf=${ZORVAN_SHELF:-$root/build/release/examples/shelf/shelf}
folder=${1:-$root/examples/samples}
sheet=${ZORVAN_DEMO_DIR:-$root/build/demo}/contact-sheet.png

mkdir -p "$(dirname "$sheet")"
"$shelf" "$folder" --recursive -o "$sheet"
echo "The contact sheet: $sheet"
