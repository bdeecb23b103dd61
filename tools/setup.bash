# shellcheck shell=bash disable=SC2154 # "root", the folder of the project, is set by who sources this.
# What `run` and `test` share: installing the Debian packages that are missing, configuring and
# building. Sourced, never run. Everything is said on standard error, a line for each step, so that
# standard output belongs to the program that is run.

export CMAKE_BUILD_PARALLEL_LEVEL="${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc 2>/dev/null || echo 2)}"

say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

fail() {
  say "error: $1"
  shift
  local hint
  for hint in "$@"; do printf '  %s\n' "$hint" >&2; done
  exit 1
}

# The packages of packages.txt that dpkg does not know as installed, one to a line.
missing_packages() {
  local wanted installed
  wanted="$(sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$root/packages.txt" | sort -u)"
  # shellcheck disable=SC2086 # one argument for each package
  installed="$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
               sed -n 's/^installed //p' | sort -u)"
  comm -23 <(printf '%s\n' "$wanted") <(printf '%s\n' "$installed")
}

# Installs what is missing; touches neither network nor privileges when nothing is.
install_packages() {
  if ! command -v dpkg-query >/dev/null; then
    say "packages: no dpkg here, so they are taken as installed (see packages.txt)"
    return
  fi
  local missing as_root=() log
  missing="$(missing_packages | tr '\n' ' ')"
  missing="${missing% }"
  if [[ -z "$missing" ]]; then
    say "packages: all installed"
    return
  fi
  if [[ "$(id -u)" != 0 ]]; then
    command -v sudo >/dev/null ||
      fail "packages are missing and only root or sudo can install them" \
           "ask an administrator for: apt-get install $missing"
    as_root=(sudo)
  fi
  say "packages: installing $missing"
  log="$(mktemp)"
  if ! "${as_root[@]}" apt-get update >"$log" 2>&1; then
    tail -n 5 "$log" >&2
    rm -f "$log"
    fail "the package lists cannot be fetched: is there a network, and a right to install?" \
         "missing: $missing"
  fi
  # shellcheck disable=SC2086
  if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y \
         --no-install-recommends $missing >"$log" 2>&1; then
    tail -n 15 "$log" >&2
    rm -f "$log"
    fail "not every package can be installed (they are those of Debian 12)" "missing: $missing"
  fi
  rm -f "$log"
  missing="$(missing_packages | tr '\n' ' ')"
  [[ -z "$missing" ]] || fail "still missing after the installation: $missing"
}

# quietly LOG COMMAND…: shows the command's output on a terminal; elsewhere keeps it in LOG and shows
# the end of it when the command fails.
quietly() {
  local log="$1"
  shift
  if [[ -t 2 ]]; then
    "$@" >&2
    return
  fi
  "$@" >"$log" 2>&1 || { tail -n 60 "$log" >&2; return 1; }
}

# build PRESET [TARGET]: configures where that is needed, then builds what changed.
build() {
  local preset="$1" folder="$root/build/$1" target=()
  [[ $# -lt 2 ]] || target=(--target "$2")
  mkdir -p "$folder" || fail "cannot write in $root"
  if [[ ! -f "$folder/build.ninja" || "$root/CMakePresets.json" -nt "$folder/build.ninja" ]]; then
    say "configure: build/$preset"
    quietly "$folder/configure.log" cmake -S "$root" --preset "$preset" \
        "-DQV_WARNINGS_AS_ERRORS=${QV_WARNINGS_AS_ERRORS:-OFF}" ||
      fail "the project cannot be configured" "whole output: build/$preset/configure.log"
  fi
  say "build: build/$preset"
  quietly "$folder/build.log" cmake --build "$folder" "${target[@]}" ||
    fail "the project does not build" "whole output: build/$preset/build.log"
}
