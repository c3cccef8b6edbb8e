# shellcheck shell=bash
# Functions that the scripts in this folder share by sourcing this file.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
asRoot=()
[ "$(id -u)" -eq 0 ] || asRoot=(sudo)

# need PACKAGE...: installs the missing packages, or exits and lists them without root.
need() {
  local missing=() package
  for package; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
    echo "Please install these packages as root, then try again: ${missing[*]}" >&2
    exit 1
  fi
  echo "Installing ${missing[*]} ..." >&2
  quietly updateLists
  quietly "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600 \
    install -y --no-install-recommends "${missing[@]}" </dev/null
}

# updateLists: runs apt-get update. It has no option to wait for the lock of the package lists.
updateLists() {
  local said
  for _ in {1..120}; do
    if said=$("${asRoot[@]}" apt-get update 2>&1); then return; fi
    grep -q 'Could not get lock' <<<"$said" || break
    sleep 5
  done
  echo "$said"
  return 1
}

# quietly COMMAND...: runs a command, and exits with its output if it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    echo "This failed: $*" >&2
    exit 1
  fi
  rm -f "$log"
}

# sources PATTERN...: lists the project's files with these names, also without a Git repository.
sources() {
  local pattern names=()
  for pattern; do names+=(-o -name "$pattern"); done
  (cd "$root" && find . \( -path ./build -o -path ./.git -o -name node_modules -o \
    -name 'phonebook.db*' \) -prune -o -type f \( "${names[@]:1}" \) -print)
}

# runTests BUILD [OPTION...]: runs the tests of a build folder that the ctest options select, prints
# the failed and skipped ones, and adds to the counts for conclude.
passed=0 failed=0 skipped=0
runTests() {
  local log=$1/tests.log all fails skips
  ctest --test-dir "$1" --no-tests=error --output-on-failure --parallel 2 "${@:2}" \
    >"$log" 2>&1 || grep -vE ' Passed |^ +Start ' "$log" >&2
  read -r fails all < <(sed -nE 's/.* ([0-9]+) tests? failed out of ([0-9]+)$/\1 \2/p' "$log")
  skips=$(grep -c '\*\*\*Skipped ' "$log" || true)
  failed=$((failed + fails)) skipped=$((skipped + skips))
  passed=$((passed + all - fails - skips))
  grep -E 'tests passed|\(Skipped\)' "$log" >&2
}

# conclude: prints the counts, and fails if a test failed.
conclude() {
  echo "$passed passed, $failed failed, $skipped skipped"
  [ "$failed" -eq 0 ]
}

# The packages that the phone book needs, and the built programs.
phonebookPackages=(g++ cmake ninja-build pkg-config libcli11-dev libicu-dev
  nlohmann-json3-dev libsoci-dev libboost-dev libsqlite3-dev libpq-dev libspdlog-dev
  liburiparser-dev libphonenumber-dev libcsv-dev
  prometheus-cpp-dev libsystemd-dev libboost-locale-dev gettext)
# shellcheck disable=SC2034
phonebook=$root/build/phonebook/phonebook/phonebook
# shellcheck disable=SC2034
phonebookBenchmarks=$root/build/phonebook/phonebook/benchmarks

# What the tests of the preset dev need.
# shellcheck disable=SC2034
testPackages=("${phonebookPackages[@]}" libgtest-dev libxml2-dev abigail-tools valgrind
  libcpp-httplib-dev curl iproute2 libxml2-utils postgresql tidy)

# codename: prints the name of this system's release.
codename() { (. /etc/os-release && echo "$VERSION_CODENAME"); }

# mirror: prints the mirror that this system's packages come from.
mirror() {
  # shellcheck disable=SC2016
  apt-get indextargets --format '$(SITE)' "Codename: $(codename)" 'Component: main' | head -1
}

# buildPhonebook TARGET...: builds targets of the phone book.
buildPhonebook() {
  need "${phonebookPackages[@]}"
  echo "Building the phone book ..." >&2
  (
    cd "$root"
    quietly cmake --preset release -B build/phonebook -DTELEFORM_BUILD_PHONEBOOK=ON \
      -DPHONEBOOK_BUILD_BENCHMARKS=ON
    quietly cmake --build build/phonebook --target "$@"
  )
}

# awaitListening PROCESS LOG: waits for the address in the log of the phone book. Exits if the
# phone book does.
awaitListening() {
  until grep -q listening "$2"; do
    kill -0 "$1" || exit 1
    sleep 0.1
  done
}
