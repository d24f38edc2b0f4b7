"""Checks that includes point one way only: who may know whom, folder by folder."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
CORE = ["outlook", "documents", "files", "telephony"]

# Folder -> folders it may include, besides itself. The longest matching folder counts.
MAY_INCLUDE = {
    "automation": [],
    "platform": ["automation"],
    "platform/linux": ["platform", "desktop", "automation"],
    "platform/windows": ["platform", "automation"],
    "desktop": ["automation"],
    "Control": ["platform", "automation", *CORE],
    "outlook": ["Control", "platform", "automation"],
    "documents": ["Control", "platform", "automation", "outlook"],
    "files": ["Control", "platform", "automation"],
    "telephony": ["Control", "platform", "automation"],
    "frontends/activex": ["Control", "platform", "platform/windows", "automation"],
    "frontends/commandline": ["Control", "platform", "platform/linux", "automation"],
}
# The system's headers, in the folders of Windows code, come after this one.
WINDOWS = {"platform/windows", "frontends/activex"}
WINDOWS_HEADER = "platform/windows/Win32.h"
# The control itself stands above the features; everything else in its folder stands below them.
TOP_OF_CONTROL = {"InterfaceTable.cpp", "InterfaceTable.h", "KestrelonControl.h"}
# The core compiles unchanged for every desktop: the standard library alone, no platform switches.
PORTABLE = {"automation", "platform", "Control", *CORE}


def folder_of(path):
    parts = pathlib.PurePosixPath(path).parts[:-1]
    for length in range(len(parts), 0, -1):
        if "/".join(parts[:length]) in MAY_INCLUDE:
            return "/".join(parts[:length])
    return None


def allowed(source, target):
    here, there = folder_of(source), folder_of(target)
    if here == there:
        return True
    if there not in MAY_INCLUDE[here]:
        return False
    if here == "Control" and there in CORE:
        return pathlib.PurePosixPath(source).name in TOP_OF_CONTROL
    if there == "Control" and here in CORE:
        return pathlib.PurePosixPath(target).name not in TOP_OF_CONTROL
    return True


def faults_of(path):
    source = path.relative_to(ROOT).as_posix()
    text = path.read_text(encoding="utf-8")
    for target in re.findall(r'^\s*#\s*include\s+"([^"]+)"', text, re.M):
        if not (ROOT / target).is_file():
            yield f'{source}: "{target}" is no path from the root'
        elif not allowed(source, target):
            yield f"{source} must not include {target}"
    if source != WINDOWS_HEADER:
        yield from windows_faults_of(source, text)
    if folder_of(source) in PORTABLE:
        for header in re.findall(r"^\s*#\s*include\s+<([^>]+)>", text, re.M):
            if "/" in header or header.endswith(".h"):
                yield f"{source} must not include <{header}>: the core uses the standard library alone"
        if re.search(r"^\s*#\s*if", text, re.M):
            yield f"{source}: no conditional compilation in the core"


def windows_faults_of(source, text):
    if re.search(r"^\s*#\s*include\s+<windows.h>", text, re.M):
        yield f"{source} must not include <windows.h> but {WINDOWS_HEADER}"
    system = re.search(r"^\s*#\s*include\s+<\S+\.h>", text, re.M)
    if folder_of(source) in WINDOWS and system:
        own = "|".join(sorted(WINDOWS))
        if not re.search(rf'^#include "({own})/', text[: system.start()], re.M):
            yield f"{source} must include {WINDOWS_HEADER} before {system[0].split()[-1]}"


def main():
    sources = [
        path
        for folder in {name.split("/")[0] for name in MAY_INCLUDE}
        for path in (ROOT / folder).rglob("*")
        if path.suffix in (".h", ".cpp")
    ]
    if len(sources) < 20:
        sys.exit(f"only {len(sources)} sources found under {ROOT}")
    faults = sorted(fault for path in sources for fault in faults_of(path))
    print("\n".join(faults) or f"{len(sources)} files include as they should")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
