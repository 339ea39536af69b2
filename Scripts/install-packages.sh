#!/usr/bin/env bash
# Installs what the project needs from Debian 12's packages. What is there already is left alone, so
# a second run takes a moment.
#
#   Scripts/install-packages.sh build          what the build and the demo need (the default)
#   Scripts/install-packages.sh build test     also what test.sh needs
#   Scripts/install-packages.sh bench          what the benchmarks and their rivals need
#   Scripts/install-packages.sh guide          what Samples/make.sh needs to typeset the host guide
set -euo pipefail

declare -A groups=(
  [build]="g++ cmake ninja-build pkg-config
           libicu-dev libdeflate-dev zlib1g-dev libjpeg62-turbo-dev libtiff-dev libxml2-dev
           libfmt-dev libcli11-dev
           poppler-utils"
  [test]="ccache clang clang-format clang-tidy libclang-rt-14-dev
          libgtest-dev libgmock-dev libbenchmark-dev
          qpdf poppler-utils mupdf-tools openssl python3"
  [bench]="libbenchmark-dev libqpdf-dev libmupdf-dev r-doc-pdf"
  [guide]="texlive-luatex texlive-latex-recommended texlive-pictures fonts-texgyre fonts-dejavu-core
           qpdf poppler-utils"
)

is_installed() { [[ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" == installed ]]; }

missing=()
for group in "${@:-build}"; do
  if [[ -z "${groups[$group]:-}" ]]; then
    echo "install-packages: no group '$group'; the groups are: build test bench guide" >&2
    exit 2
  fi
  for package in ${groups[$group]}; do
    if ! is_installed "$package" && [[ " ${missing[*]-} " != *" $package "* ]]; then missing+=("$package"); fi
  done
done

if ((${#missing[@]} == 0)); then
  echo "install-packages: all there (${*:-build})"
  exit 0
fi
if ! command -v apt-get >/dev/null; then
  echo "install-packages: no apt-get here, going on with what is installed (Debian's names: ${missing[*]})" >&2
  exit 0
fi

as_root=()
if ((EUID != 0)); then
  if ! command -v sudo >/dev/null; then
    echo "install-packages: run as root or install sudo; missing: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
apt() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 -q "$@"; }

echo "install-packages: installing ${missing[*]}"
apt update
apt install -y --no-install-recommends "${missing[@]}"
