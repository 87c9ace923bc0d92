# Functions for the scripts in the top directory; source this file.

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# Packages that the program needs to be built and to run.
build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libfmt-dev libarchive-dev
  libxml2-dev libyaml-cpp-dev pciutils)
# Additional packages for the tests.
test_packages=(libgtest-dev libgmock-dev procps binutils valgrind dmidecode qemu-system-x86
  busybox-static cpio python3-jsonschema man-db groff mandoc zsh fish)
# Additional packages to make and check the Debian packages.
package_packages=(dpkg-dev file lintian mmdebstrap)
# Packages that the fuzzers need besides the first list.
fuzz_packages=(clang-14 libclang-rt-14-dev llvm-14)
# Packages that the measurements need besides the first list.
bench_packages=(libbenchmark-dev valgrind lshw hwinfo)
# Additional packages for the full checks (.ci/run).
ci_packages=(clang-14 clang-tidy-14 clang-format-14 libclang-rt-14-dev llvm-14 cppcheck python3)

# Installs those of the given Debian packages that are missing.
require_packages() {
  command -v dpkg-query >/dev/null && command -v apt-get >/dev/null ||
    fail "this is not a Debian system; install the software of these Debian packages, then build with" \
      "'cmake -S . -B build -G Ninja && cmake --build build': $*"
  local missing=() package
  for package in "$@"; do
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
      missing+=("$package")
  done
  ((${#missing[@]})) || return 0

  local as_root=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null ||
      fail "run as root, or install these packages first: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  echo "Installing missing packages: ${missing[*]}" >&2
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update -q &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -q -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 15 "$log" >&2
    fail "could not install ${missing[*]}; see above; check the network and the free disk space"
  fi
  rm -f "$log"
}

# quietly TEXT COMMAND...: prints TEXT, runs the command, and shows its output only if it fails.
quietly() {
  local text=$1 log
  shift
  log=$(mktemp)
  echo "$text" >&2
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    fail "failed: $*"
  fi
  rm -f "$log"
}
