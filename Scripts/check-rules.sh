#!/usr/bin/env bash
# Checks the rules of the house that no compiler checks. Prints every breach; exits with 1 when there
# was one. Docs/architecture.md tells the reasons.
set -euo pipefail
shopt -s extglob
shopt -s lastpipe  # so that a breach found at the end of a pipe is counted
cd "$(dirname "${BASH_SOURCE[0]}")/.."

breaches=0
breach() {
  echo "rule broken: $1"
  breaches=$((breaches + 1))
}
# A breach for each line of input.
breach_each() {
  local line
  while IFS= read -r line; do breach "$1: $line"; done
}

mapfile -t library < <(git ls-files 'Source/TesselPage/*.cpp' 'Source/TesselPage/*.h' 'Source/PDFEncryption/*' \
  'Source/Kelp*/*')
mapfile -t hosts < <(git ls-files 'Source/TesselHost/*.cpp' 'Source/TesselHost/*.h' 'Tools/*.cpp' 'Tools/*.h')
mapfile -t tests < <(git ls-files 'Tests/*.cpp' 'Tests/*.h')
mapfile -t headers < <(git ls-files '*.h')
mapfile -t code < <(git ls-files 'Source/*.cpp' 'Source/*.h' 'Tools/*.cpp' 'Tools/*.h')

# Lines of the given files that match, comments left out: search PATTERN FILE...
search() {
  local pattern=$1
  shift
  (($# == 0)) || sed_comments "$@" | grep -E -- "$pattern" || true
}
sed_comments() {
  local file
  for file in "$@"; do sed -E 's@(^|[^:"])//.*$@\1@' "$file" | grep -nE . | sed "s@^@$file:@"; done
}

# The library is silent and never ends the process. One line of the ASCII-safe variant is part of the interface.
readonly output='std::(cout|cerr|clog)|(^|[^a-z_])(printf|fprintf|vprintf|puts|putchar)\('
readonly ending='(^|[^a-zA-Z_])(exit|_exit|quick_exit|abort|terminate)\('
search "$output|$ending" "${library[@]}" | grep -vE '^Source/TesselPage/Interface/ctesselpage_encode\.cpp:.*std::cout' |
  breach_each "the library prints or ends the process" || true

# Floors, lowest first. A file includes nothing of a floor above its own.
floor_of() {
  case "$1" in
    Source/PDFEncryption/* | Source/Kelp*) echo 0 ;;
    # Headers that know of no object, so that every floor may speak of what they declare.
    Source/TesselPage/Structure/tessel_@(sobj|rarestring|objflags|filter).h) echo 1 ;;
    # The encryption dictionary is an object, and objects decrypt what they read.
    Source/TesselPage/@(Security|Syntax)/*) echo 3 ;;
    Source/TesselPage/Structure/*) echo 4 ;;
    Source/TesselPage/Writer/*) echo 5 ;;
    Source/TesselPage/Model/*) echo 6 ;;
    Source/TesselPage/Finder/*) echo 7 ;;
    Source/TesselPage/Interface/* | Source/TesselPage/@(tessel_page|ctesselpage_encode).h) echo 8 ;;
    Source/TesselPage/*) echo 1 ;;
    Source/TesselHost/*) echo 9 ;;
    *) echo 10 ;;
  esac
}

# What a source file may include from above: an object knows its source and its writer, and a source its
# collections. Their headers get by with forward declarations.
circle() {
  case "$1:$2" in
    # Only the copiers' sources include it, and it reads a source and writes a destination.
    */tessel_spancopier.h:*) return 0 ;;
    *.h:*) return 1 ;;
    Source/TesselPage/S*:Source/TesselPage/Structure/tessel_*) return 0 ;;
    Source/TesselPage/S*:Source/TesselPage/Writer/tessel_destfile.h) return 0 ;;
    Source/TesselPage/Security/*:Source/TesselPage/Model/tessel_keyscan.h) return 0 ;;
    Source/TesselPage/Structure/*:Source/TesselPage/Model/*) return 0 ;;
    # Pages and nodes of the page tree read and write themselves.
    Source/TesselPage/Writer/tessel_merge.cpp:Source/TesselPage/Model/*) return 0 ;;
    *) return 1 ;;
  esac
}

includes() { [[ $# -eq 0 ]] || grep -HoE '^#include "[^"]+"' "$@" | sed -E 's@^([^:]+):#include "([^"]+)"@\1 \2@'; }

while read -r file included; do
  target=Source/$included
  if [[ ! -e $target ]]; then
    breach "$file includes \"$included\", which isn't a path from Source/"
  elif (($(floor_of "$target") > $(floor_of "$file"))) && ! circle "$file" "$target"; then
    breach "$file looks up to $included"
  fi
done < <(includes "${library[@]}")

# The first hosts use the front door only.
while read -r file included; do
  case "$included" in
    TesselPage/*/*) breach "$file reaches behind the front door: $included" ;;
  esac
done < <(includes "${hosts[@]}")
grep -nE '#include <TesselPage/[^>]+/' "${hosts[@]}" /dev/null |
  breach_each "a host reaches behind the front door" || true

# The command line's libraries stay with the command line.
grep -nE '#include <(fmt|CLI)/' "${library[@]}" /dev/null | breach_each "only hosts use fmt and CLI11" || true

for file in "${headers[@]}"; do
  grep -qx '#pragma once' "$file" || breach "$file has no #pragma once"
done

for file in "${code[@]}"; do
  lines=$(wc -l <"$file")
  ((lines <= 700)) || echo "warning: $file has $lines lines; a room of two subjects is two rooms"
done

# A test that is switched off pins nothing.
search 'DISABLED_' "${tests[@]}" | breach_each "a test is switched off" || true

if ((breaches > 0)); then
  echo "check-rules: $breaches breaches"
  exit 1
fi
echo "check-rules: ${#code[@]} source files and ${#tests[@]} test files keep the rules"
