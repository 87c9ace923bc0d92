# SPDX-License-Identifier: Apache-2.0

# Functions for the scripts of this directory; source this file.
source "$here/tools/packages.sh"

all_targets() { grep -v '^#' "$here/fuzz/targets" | cut -d' ' -f1; }

# Prints the line of a target, without its name.
about() { sed -n "s/^$1 \+//p" "$here/fuzz/targets"; }

longest_input() { about "$1" | cut -d' ' -f1; }

sources_under_test() { about "$1" | cut -d' ' -f2-; }

check_targets() {
  local target
  for target in "$@"; do
    [[ -n $(about "$target") ]] ||
      fail "there is no target '$target', only: $(all_targets | tr '\n' ' ')"
  done
}

# build_preset PRESET BUILD
build_preset() {
  require_packages "${build_packages[@]}" "${fuzz_packages[@]}"
  [[ -f $2/build.ninja ]] ||
    step "Configuring preset $1" quietly cmake -S "$here" --preset "$1" -B "$2"
  step "Building the fuzzers' targets" quietly cmake --build "$2" --target fuzzers
}

# regressions TARGET: prints the directory with inputs of earlier findings, if it has one.
regressions() {
  local directory=$here/fuzz/regressions/$1
  [[ ! -d $directory ]] || echo "$directory"
}
