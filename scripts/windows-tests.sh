# shellcheck shell=bash disable=SC2154
# The Windows builds of ./test, and their tests under Wine.

# The architectures whose tests are built and can be run here.
windows_builds=()

# Builds the control and its tests for Windows; for 32 bits the control alone where no 32-bit
# program can be run.
build_windows_tests() {
  if ! (install "${windows_packages[@]}" "${windows_test_packages[@]}"); then
    echo "Skipped: the Windows tests, because their packages cannot be installed here"
    return
  fi
  if ! can_run x86_64; then
    echo "Skipped: the Windows tests, because Wine does not run 64-bit programs here"
    return
  fi
  build_for_windows x86_64 all -DKESTRELON_TESTS=ON
  windows_builds+=(x86_64)
  if has_32_bit_wine; then
    build_for_windows i686 all -DKESTRELON_TESTS=ON
    windows_builds+=(i686)
    return
  fi
  build_for_windows i686 KestrelonControl2005
  python3 "$project/tests/frontends/activex/CheckModule.py" \
    "$project/build-win/i686/bin/KestrelonControl2005.dll" i686
  echo "Skipped: the 32-bit Windows tests, because there is no 32-bit Wine here (the control is built)"
}

# It is installed where the system knows its architecture, and the architecture never added.
has_32_bit_wine() {
  if dpkg --print-foreign-architectures | grep -qx i386; then
    (install wine32:i386) || true
  fi
  can_run i686
}

# can_run ARCHITECTURE: whether Wine runs such programs. It may end with 0 without having run one.
can_run() {
  local program=$project/build-win/probe-$1.exe status=0
  mkdir -p "$project/build-win"
  echo 'int main(void) { return 7; }' | "$1-w64-mingw32-gcc-posix" -x c - -o "$program"
  timeout 120 "$project/scripts/wine" "$program" >/dev/null 2>&1 || status=$?
  [ "$status" -eq 7 ]
}

# Wine's own processes start with the first program, keep its streams, and end seconds after the
# last: CTest would wait for them. So the first program is none of its own: a shell that tells when
# it is up, and then waits for its input, which keeps them running to the end.
run_windows_tests() {
  [ ${#windows_builds[@]} -gt 0 ] || return 0
  local architecture
  coproc waiting { exec "$project/scripts/wine" cmd.exe /q /k echo up 2>/dev/null; }
  read -r -u "${waiting[0]}"
  for architecture in "${windows_builds[@]}"; do
    say "Testing the Windows build for $architecture"
    (cd "$project/build-win/$architecture" && ctest --output-on-failure)
  done
  exec {waiting[1]}>&-
  wait "$waiting_PID" || true
}
