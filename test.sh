#!/usr/bin/env bash
# Runs every check of the project, the same by hand and in CI; ends at the first stage that fails.
#
#   ./test.sh            everything
#   ./test.sh --quick    the Release build and its tests only
#
# The corpus of real files is looked for in $TESSEL_CORPUS, else in ../shared/corpus.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

quick=false
case "${1:-}" in
  "") ;;
  --quick) quick=true ;;
  *)
    echo "usage: ./test.sh [--quick]" >&2
    exit 2
    ;;
esac

jobs=$(nproc)
readonly jobs
readonly corpus_dir=${TESSEL_CORPUS:-../shared/corpus}

# Runs one stage in a shell of its own, where the first failing command ends it.
stage() {
  local name=$1 start=$SECONDS status
  shift
  printf '\n==== %s\n' "$name"
  (
    set -e
    "$@"
  )
  status=$?
  if ((status != 0)); then
    printf '==== %s: FAILED after %d s\n\ntest.sh: failed in stage "%s"\n' "$name" $((SECONDS - start)) "$name"
    exit 1
  fi
  printf '==== %s: ok, %d s\n' "$name" $((SECONDS - start))
}

packages() { Scripts/install-packages.sh build test; }

format() {
  git ls-files -z '*.cpp' '*.h' | xargs -0 -r clang-format --dry-run -Werror
  echo "$(git ls-files '*.cpp' '*.h' | wc -l) files are formatted"
}

rules() { Scripts/check-rules.sh; }

build() {
  mkdir -p build
  cmake --preset "$1" >"build/$1.log" 2>&1 || { cat "build/$1.log"; return 1; }
  cmake --build --preset "$1" -- -k 0
}

# Leaves the lines of failures and ctest's closing lines; that a test passed needs no line.
run_tests() {
  local preset=$1
  shift
  ctest --test-dir "build/$preset" -j "$jobs" --output-on-failure --no-tests=error "$@" 2>&1 |
    grep -vE '^ *Start +[0-9]+: | +Passed +[0-9.]+ sec$'
}

build_and_test() {
  build "$1"
  run_tests "$1"
}

# clang builds what gcc has built already, so that each compiler's warnings count, and with the sanitizers in it.
build_sanitized_and_test() {
  export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1 UBSAN_OPTIONS=print_stacktrace=1
  build_and_test asan
}

lint() { Scripts/lint.sh build/asan "$jobs"; }

# Real files, when they are there: each through a build with sanitizers, and those that are sound judged by two renderers.
corpus() {
  if [[ ! -d $corpus_dir ]]; then
    echo "skipped: no corpus at $corpus_dir"
    return
  fi
  python3 Tests/Corpus/corpus_run.py robust --corpus "$corpus_dir" --tool build/asan/tessel
  python3 Tests/Corpus/corpus_run.py encrypted --corpus "$corpus_dir" --tool build/asan/tessel
  python3 Tests/Corpus/corpus_run.py render --corpus "$corpus_dir" --tool build/release/tessel \
    --compare build/release/bin/raster_compare
  build_examples
  python3 Tests/Corpus/corpus_run.py merge --corpus "$corpus_dir" --tool build/examples/merge_pages \
    --compare build/release/bin/raster_compare --every 8
}

# As a user builds them: against what is installed.
build_examples() {
  rm -rf build/installed build/examples
  cmake --install build/release --prefix build/installed >/dev/null
  cmake -S Examples -B build/examples -G Ninja -DCMAKE_PREFIX_PATH="$PWD/build/installed" >/dev/null
  cmake --build build/examples
}

stage "packages" packages
if ! $quick; then
  stage "format" format
  stage "project rules" rules
fi
stage "Release build (gcc) and tests" build_and_test release
if ! $quick; then
  stage "ASan and UBSan build (clang) and tests" build_sanitized_and_test
  stage "lint (clang-tidy)" lint
  stage "corpus" corpus
fi
printf '\ntest.sh: all stages passed in %d min %d s\n' $((SECONDS / 60)) $((SECONDS % 60))
