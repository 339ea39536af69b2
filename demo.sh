#!/usr/bin/env bash
# Shows the library at work: builds it, lays the pages of our manual two on a sheet, renders a picture.
# Installs what it needs; leaves its results in out/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

readonly build=build/demo
readonly sheets=out/host-guide-2up.pdf
readonly picture=out/host-guide-2up

Scripts/install-packages.sh build

mkdir -p build out
echo "demo: building in $build"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >"$build.log" 2>&1 || { cat "$build.log"; exit 1; }
cmake --build "$build" --target tessel

"$build/tessel" nup Samples/host-guide.pdf -o "$sheets" --grid 2x1 --paper A4
pdftoppm -r 100 -f 1 -l 1 -singlefile -png "$sheets" "$picture"

echo
echo "demo: the manual, two pages on each A4 sheet:  $PWD/$sheets"
echo "demo: the first sheet as a picture:            $PWD/$picture.png"
