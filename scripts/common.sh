# Shared by ./demo, ./test, ./build-windows and .ci/run: what has to be installed, and how the
# project is built.

set -euo pipefail
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages=(g++ cmake ninja-build pkg-config libxml2-dev libdeflate-dev zlib1g-dev libgmime-3.0-dev
  libglib2.0-dev nlohmann-json3-dev libcli11-dev libreofficekit-dev libxslt1-dev libicu-dev
  libical-dev libcurl4-openssl-dev)
# LibreOffice makes PDF, HTML and .doc; the fonts are those that letters commonly ask for; Python
# runs the demo's web server.
run_packages=(libreoffice-writer-nogui libreoffice-calc-nogui fonts-liberation
  fonts-crosextra-carlito fonts-crosextra-caladea python3)
test_packages=(libgtest-dev libgmock-dev python3 poppler-utils khard khal todoman
  python3-vobject python3-icalendar python3-dateutil)
# The cross compilers, and Wine, which runs the build's own tools and the tests.
windows_packages=(g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix cmake ninja-build python3 wine
  wine64)
# GoogleTest's sources, which are built for Windows.
windows_test_packages=(googletest)
lint_packages=(clang-format clang-tidy)

say() { printf '\n== %s\n' "$*"; }

# install PACKAGE…: installs those that are missing, and nothing when none is.
install() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  say "Installing ${missing[*]}"
  local sudo=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      echo "These packages are missing: ${missing[*]}" >&2
      echo "Run this once as root, or install sudo." >&2
      exit 1
    }
    sudo=(sudo)
  fi
  "${sudo[@]}" apt-get update -qq &&
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
      --no-install-recommends "${missing[@]}" >/dev/null || {
    echo "These packages could not be installed: ${missing[*]}" >&2
    echo "The lines above say why. Mend that, such as the network, or install them by hand; then" \
      "run this again." >&2
    return 1
  }
}

# configure FOLDER [CMAKE OPTION…]
configure() {
  local folder=$1
  shift
  cmake -S "$project" -B "$folder" -G Ninja "$@" >/dev/null || {
    echo "${folder#"$project"/} could not be set up: the lines above say why. If it was made at" \
      "another place or with other tools, delete it and run this again." >&2
    return 1
  }
}

# build FOLDER [CMAKE OPTION…]
build() {
  local folder=$1
  shift
  say "Building in ${folder#"$project"/}"
  configure "$folder" "$@"
  cmake --build "$folder"
}

# build_for_windows ARCHITECTURE TARGET [CMAKE OPTION…]: in build-win/ARCHITECTURE, which keeps the
# options that it was given before. Not all of a build with tests is needed for the control alone.
build_for_windows() {
  local architecture=$1 target=$2 folder=$project/build-win/$1
  shift 2
  say "Building $target for $architecture"
  configure "$folder" -DKESTRELON_WINDOWS="$architecture" \
    -DCMAKE_TOOLCHAIN_FILE="$project/cmake/mingw-w64.cmake" "$@"
  cmake --build "$folder" --target "$target"
}
