#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy over the sources of the library, its host and the tool.
#
#   Scripts/lint.sh [BUILD_DIR [JOBS]]     BUILD_DIR holds compile_commands.json; default build/debug
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
readonly build=${1:-build/debug}
readonly jobs=${2:-$(nproc)}

mapfile -t files < <(git ls-files 'Source/*.cpp' 'Tools/*.cpp')
if ((${#files[@]} == 0)); then
  echo "lint: no sources"
  exit 0
fi
# One file a call, so that a slow file doesn't hold up the others; only what is wrong is printed.
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$jobs" clang-tidy --quiet -p "$build" 2> >(
  grep -vE '^[0-9]+ warnings? (generated|treated as errors?)|^Suppressed|^Use -header-filter' >&2 || true
)
echo "lint: ${#files[@]} files are clean"
