#!/usr/bin/env bash
# Takes the guide's picture of a sheet from what the demo has made: run ./demo.sh, this, then Samples/make.sh.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
pdftoppm -r 110 -f 3 -l 3 -singlefile -jpeg -jpegopt quality=80 ../../out/host-guide-2up.pdf sheet
