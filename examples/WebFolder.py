#!/usr/bin/env python3
"""A small web server over one folder, for trying template lists and uploads on this machine.

Folders are listed in the manner of classic web servers, with anchors in capitals and the way up
first; GET reads a file, PUT writes one. It listens on the loopback interface alone, prints its
address when it is ready, and ends on SIGTERM.
"""

import argparse
import html
import http
import http.server
import os
import pathlib
import shutil
import signal
import sys
import urllib.parse

LONGEST_UPLOAD = 64 << 20


class WebFolder(http.server.BaseHTTPRequestHandler):
    root = pathlib.Path()
    timeout = 60

    def do_GET(self):
        path = self.local_path()
        if path is None or not path.exists():
            self.send_error(http.HTTPStatus.NOT_FOUND)
        elif path.is_dir():
            # Programs of those days read listings in this character set.
            page = self.listing(path).encode("cp1252", "xmlcharrefreplace")
            self.send_response(http.HTTPStatus.OK)
            self.send_header("Content-Type", "text/html; charset=windows-1252")
            self.send_header("Content-Length", str(len(page)))
            self.end_headers()
            self.wfile.write(page)
        else:
            with path.open("rb") as file:
                self.send_response(http.HTTPStatus.OK)
                self.send_header("Content-Type", "application/octet-stream")
                self.send_header("Content-Length", str(path.stat().st_size))
                self.end_headers()
                shutil.copyfileobj(file, self.wfile)

    def do_PUT(self):
        path = self.local_path()
        length = self.headers.get("Content-Length", "")
        if path is None or path.is_dir() or not path.parent.is_dir():
            self.send_error(http.HTTPStatus.FORBIDDEN)
        elif not length.isdecimal():
            self.send_error(http.HTTPStatus.LENGTH_REQUIRED)
        elif int(length) > LONGEST_UPLOAD:
            self.send_error(http.HTTPStatus.REQUEST_ENTITY_TOO_LARGE)
        else:
            content = self.rfile.read(int(length))
            if len(content) != int(length):
                return  # half a file is none
            is_new = not path.exists()
            path.write_bytes(content)
            self.send_response(http.HTTPStatus.CREATED if is_new else http.HTTPStatus.NO_CONTENT)
            self.send_header("Content-Length", "0")
            self.end_headers()

    def refuse_method(self):
        self.send_response(http.HTTPStatus.METHOD_NOT_ALLOWED)
        self.send_header("Allow", "GET, PUT")
        self.send_header("Content-Length", "0")
        self.end_headers()

    def __getattr__(self, name):
        if name.startswith("do_"):
            return self.refuse_method
        raise AttributeError(name)

    def local_path(self):
        """The file or folder that is asked for; None for one outside the root."""
        asked = urllib.parse.unquote(urllib.parse.urlsplit(self.path).path, errors="surrogateescape")
        if "\0" in asked:
            return None
        path = (self.root / asked.lstrip("/")).resolve()
        return path if path.is_relative_to(self.root) else None

    def listing(self, folder):
        here = "/" + "/".join(folder.relative_to(self.root).parts)
        base = here.rstrip("/") + "/"
        parent = base[:-1].rpartition("/")[0] + "/"
        rows = [anchor(parent, "[To Parent Directory]")]
        for entry in sorted(folder.iterdir(), key=lambda entry: entry.name.lower()):
            rows.append(anchor(base + entry.name + ("/" if entry.is_dir() else ""), entry.name))
        title = html.escape(f"{self.headers.get('Host', '')} - {here}")
        return (f"<html><head><title>{title}</title></head><body><H1>{title}</H1><hr>\r\n<pre>"
                + "<br>\r\n".join(rows) + "<br></pre><hr></body></html>\r\n")


def anchor(path, name):
    # A name that is no UTF-8 goes as its bytes.
    address = urllib.parse.quote(os.fsencode(path))
    return f'<A HREF="{address}">{html.escape(name, quote=False)}</A>'


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--port", type=int, default=0, help="a free one when not given")
    options = parser.parse_args()
    if not options.folder.is_dir():
        parser.error(f"{options.folder} is no folder")
    WebFolder.root = options.folder.resolve()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    with http.server.ThreadingHTTPServer(("127.0.0.1", options.port), WebFolder) as server:
        print(f"http://127.0.0.1:{server.server_port}", flush=True)
        server.serve_forever()


if __name__ == "__main__":
    main()
