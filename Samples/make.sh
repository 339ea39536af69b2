#!/usr/bin/env bash
# Typesets the host guide with LuaLaTeX into Samples/host-guide.pdf. The result is in the repository, so
# this is only needed after a change of the text. Equal sources give an equal file.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

../Scripts/install-packages.sh guide

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
python3 host-guide/make-tiles.py "$work/tiles.png"

# The date that the file claims; one that moved would make every run differ.
export SOURCE_DATE_EPOCH=1735689600 FORCE_SOURCE_DATE=1 TZ=UTC
export TEXINPUTS=".:$work:"

cd host-guide
for run in 1 2 3; do
  lualatex --interaction=nonstopmode --halt-on-error --output-directory="$work" host-guide.tex >"$work/run$run.out" || {
    tail -40 "$work/run$run.out"
    exit 1
  }
done
grep -E '^(LaTeX Warning|Overfull)|undefined' "$work/host-guide.log" || true
mv "$work/host-guide.pdf" ../host-guide.pdf
pdfinfo ../host-guide.pdf | grep -E '^(Producer|Pages|File size|PDF version)'
