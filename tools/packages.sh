# SPDX-License-Identifier: Apache-2.0

# Functions for the scripts in the top directory; source this file.

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# Packages that the program needs to be built and to run.
build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libfmt-dev libarchive-dev
  libxml2-dev libyaml-cpp-dev pciutils)
# What `pciinfo store` needs to be built, beside these; without them it is left out. The headers of
# libsoci-dev include those of Boost, but the package does not depend on them.
fleet_packages=(libsoci-dev libboost-dev libsqlite3-dev libpq-dev libssl-dev)
# What the tests need beside these.
test_packages=(libgtest-dev libgmock-dev procps binutils dmidecode patch less python3-jsonschema
  man-db groff mandoc "${fleet_packages[@]}" sqlite3)
# What the slow tests need beside these: valgrind, emulated machines, other shells, what checks units,
# a browser, what draws graphs, a database server, what injects signals, and Ansible.
slow_test_packages=(valgrind qemu-system-x86 busybox-static cpio zsh fish systemd chromium
  chromium-driver graphviz postgresql-15 strace clickhouse-client ansible-core openssh-client)
# What packing, and checking the packages, needs beside these.
package_packages=(binutils dpkg-dev file lintian mmdebstrap ansible-core openssh-client)
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

# step TEXT COMMAND...: says what it does, runs the command and says how long it took.
step() {
  local text=$1 start=$SECONDS
  shift
  echo "$text ..." >&2
  "$@" || fail "failed: $*"
  echo "$text: $((SECONDS - start)) s" >&2
}

# quietly COMMAND...: shows the command's output only when it fails.
quietly() {
  local log status=0
  log=$(mktemp)
  "$@" >"$log" 2>&1 || status=$?
  ((status == 0)) || cat "$log" >&2
  rm -f "$log"
  return "$status"
}

# build_directory DIRECTORY [TARGET...]: builds; ninja says how far it is, as in [57/163].
build_directory() {
  local directory=$1
  shift
  cmake --build "$directory" ${1:+--target "$@"} >&2
}
