"""Checks that a module for Windows has the exports and the version that it should, runs on any
Windows by itself with the protections of its memory, and holds nothing of the place where it was
built.

CheckModule.py MODULE ARCHITECTURE, with x86_64 or i686 for the architecture.
"""

import pathlib
import re
import struct
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[3]
FORMATS = {"x86_64": "pei-x86-64", "i686": "pei-i386"}
# Of data against being run, and of code against being found at a known place.
PROTECTIONS = {
    "x86_64": ["NX_COMPAT", "DYNAMIC_BASE", "HIGH_ENTROPY_VA"],
    "i686": ["NX_COMPAT", "DYNAMIC_BASE"],
}
EXPORTS = ["DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"]
# On every Windows from 7 on.
SYSTEM_LIBRARIES = {
    f"{name}.dll"
    for name in """advapi32 kernel32 msvcrt ole32 oleaut32 shell32 urlmon user32 version
                   wininet""".split()
}


def versions_of(contents):
    """The version of the file and of the product in the version resource."""
    start = contents.find(struct.pack("<II", 0xFEEF04BD, 0x10000))
    if start < 0:
        return []
    words = struct.unpack_from("<8H", contents, start + 8)
    return ["{1}.{0}.{3}.{2}".format(*words[i:i + 4]) for i in (0, 4)]


def faults_of(module, architecture):
    described = subprocess.run(
        [f"{architecture}-w64-mingw32-objdump", "-p", module],
        check=True, capture_output=True, text=True, errors="replace").stdout
    if f"file format {FORMATS[architecture]}" not in described:
        yield f"it is not for {architecture}"
    names = described.partition("[Ordinal/Name Pointer] Table")[2]
    exports = re.findall(r"^\s+\[ *\d+\] (\S+)$", names, re.M)
    if exports != EXPORTS:
        yield f"it exports {exports}, and should export {EXPORTS}: see the .def file"
    imports = re.findall(r"DLL Name: (\S+)", described)
    if not imports:
        yield "no imports were found in it"
    for name in imports:
        if name.lower() not in SYSTEM_LIBRARIES:
            yield (f"it imports {name}: link that statically, or enter it in SYSTEM_LIBRARIES of "
                   f"{pathlib.Path(__file__).name} if every Windows has it")
    for name in PROTECTIONS[architecture]:
        if not re.search(rf"^\s+{name}$", described, re.M):
            yield f"it lacks the flag {name}: see the linker's options for it"
    if not re.search(r"^Entry 5 \w+ 0*[1-9a-f]\w* Base Relocation", described, re.M):
        yield "it has no relocations, and could not be moved: link it without stripping them"
    contents = pathlib.Path(module).read_bytes()
    project = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    version = re.search(r"^project\(\w+ VERSION ([\d.]+)", project, re.M)[1]
    if versions_of(contents) != [version, version]:
        yield f"its file and product version are {versions_of(contents)}, not {version}"
    if any(str(ROOT).encode(encoding) in contents for encoding in ("utf-8", "utf-16-le")):
        yield f"it holds the path of this build, {ROOT}, and would differ from any other build"


def main(module, architecture):
    faults = list(faults_of(module, architecture))
    print("\n".join(f"{module}: {fault}" for fault in faults) or
          f"{pathlib.Path(module).name} for {architecture}: four exports, "
          "system libraries only")
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) != 3 or sys.argv[2] not in FORMATS:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
