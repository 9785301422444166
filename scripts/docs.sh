#!/bin/sh
# docs.sh: writes the reference of the interface with the guide to build/docs/html. Fails when doxygen warns of
# anything, and when a public name has no docstring; undocumented.py says what needs none.
set -eu
cd "$(dirname "$0")/.."
out=build/docs
rm -rf "$out"
mkdir -p "$out"

# The page of each family begins with its example.
for example in examples/families/*.cpp; do
    family=$(basename "$example" .cpp)
    guide=docs/$family.md
    [ -f "$guide" ] || guide=docs/interface.md
    cat <<TEXT
/** \addtogroup zorvan-$family zorvan/$family
$(sed -n '1s,^// ,,p' "$example") The guide: [$(sed -n '1s/^# //p' "$guide")]($guide).

\include $family.cpp

prints

\verbinclude $family.out */
TEXT
done >"$out/families.dox"

{
    cat scripts/Doxyfile
    echo "OUTPUT_DIRECTORY = $out"
    echo "INPUT += $out/families.dox"
    echo "PROJECT_NUMBER = $(sed -n 's/^project(Zorvan VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)"
} | doxygen - 2>"$out/warnings"
if [ -s "$out/warnings" ]; then
    cat "$out/warnings" >&2
    exit 1
fi
python3 scripts/undocumented.py "$out/xml"
rm -r "$out/xml"

# Which component a header belongs to: the one that is made of the source of that name, or else the one that the
# folder has, of several the one that is named here.
awk '
    FNR == 1 { folder = FILENAME; sub("/[^/]*$", "", folder) }
    /^ *zorvan_library[(]/ { name = $1; sub(".*[(]", "", name); if (!(folder in first)) first[folder] = name }
    /target_|[)]$/ && !/[.]cpp/ { next }
    { for (i = 1; i <= NF; ++i) if ($i ~ /[.]cpp[)]?$/) { source = $i; sub(/[.]cpp.*/, "", source); sub(".*}/", "", source)
        print (source ~ /^zorvan/ ? source : folder "/" source) ".h", name } }
    END { for (folder in first) print folder, first[folder] }
' zorvan/*/CMakeLists.txt zorvan/*/*.cmake zorvan/*/*/CMakeLists.txt >"$out/components"
cat >>"$out/components" <<'TEXT'
zorvan/media Media
zorvan/media/AVAssetTrack.h MediaAssets
zorvan/media/AVMediaType.h MediaAssets
zorvan/media/AVCaptureVideoOrientation.h Media
zorvan/media/AVVideoCodecType.h MediaAssets
zorvan/platform/avfoundation Playback
zorvan/platform/graphics/DrawingTarget.h Drawing
TEXT

# Where a page says what to include, it says what to link.
for page in "$out"/html/class*.html "$out"/html/struct*.html; do
    awk -v components="$out/components" '
        BEGIN { while ((getline line <components) > 0) { split(line, pair, " "); component[pair[1]] = pair[2] } }
        match($0, /#include &lt;zorvan[^&]*&gt;<\/code>/) {
            header = substr($0, RSTART + 13, RLENGTH - 24)
            folder = header
            sub("/[^/]*$", "", folder)
            target = header in component ? component[header] : component[folder]
            if (target) sub("</code></p>", "</code>, link <code>Zorvan::" target "</code></p>")
        }
        { print }' "$page" >"$out/page"
    mv "$out/page" "$page"
done
echo "The reference: $out/html/index.html"
