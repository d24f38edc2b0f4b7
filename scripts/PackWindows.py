"""Packs the modules of build-win/ with their notes into out/; the same modules give the same file."""

import pathlib
import re
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
MODULE = "KestrelonControl2005.dll"
DATE = (1980, 1, 1, 0, 0, 0)  # the earliest that the format knows


def main():
    cache = (ROOT / "build-win/x86_64/CMakeCache.txt").read_text(encoding="utf-8")
    version = re.search(r"^CMAKE_PROJECT_VERSION:\w+=(.+)$", cache, re.M)[1]
    notes = (ROOT / "frontends/activex/README.txt").read_text(encoding="ascii")
    files = {
        f"x64/{MODULE}": (ROOT / "build-win/x86_64/bin" / MODULE).read_bytes(),
        f"x86/{MODULE}": (ROOT / "build-win/i686/bin" / MODULE).read_bytes(),
        "README.txt": notes.replace("@VERSION@", version).replace("\n", "\r\n").encode("ascii"),
    }
    target = ROOT / "out" / f"KestrelonControl2005-{version}.zip"
    target.parent.mkdir(exist_ok=True)
    with zipfile.ZipFile(target, "w") as archive:
        for name, contents in sorted(files.items()):
            entry = zipfile.ZipInfo(name, DATE)
            entry.create_system = 3  # whose mode follows
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, contents, zipfile.ZIP_DEFLATED, 9)
    print(target.relative_to(ROOT))


if __name__ == "__main__":
    main()
