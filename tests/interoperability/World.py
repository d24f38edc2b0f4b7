"""A mailbox in a temporary folder, the members on it, and the programs that share its files.

The programs are configured by files in that folder; nothing of the user's is read or written.
"""

import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest
from xml.sax.saxutils import quoteattr

PROGRAM = os.environ["KESTRELON_PROGRAM"]

KHARD = """[addressbooks]
[[contacts]]
path = {mailbox}/Contacts
[general]
editor = /bin/true
merge_editor = /bin/true
"""
KHAL = """[calendars]
[[calendar]]
path = {mailbox}/Calendar
[locale]
timeformat = %H:%M
dateformat = %Y-%m-%d
longdateformat = %Y-%m-%d
datetimeformat = %Y-%m-%d %H:%M
longdatetimeformat = %Y-%m-%d %H:%M
local_timezone = Europe/Berlin
default_timezone = Europe/Berlin
[sqlite]
path = {folder}/khal.db
"""
TODOMAN = """path = "{mailbox}/Tasks"
date_format = "%Y-%m-%d"
time_format = "%H:%M"
cache_path = "{folder}/todoman.db"
default_list = "Tasks"
"""


def record(id, **fields):
    """Contact record XML."""
    lines = "".join(f"<field name={quoteattr(name)} value={quoteattr(value)}/>"
                    for name, value in fields.items())
    return f"<record id={quoteattr(id)}>{lines}</record>"


def content_lines(content):
    """The lines of a vCard or iCalendar file as bytes, each with its continuation lines."""
    lines = []
    for line in content.splitlines(keepends=True):
        if lines and line[:1] in b" \t":
            lines[-1] += line
        else:
            lines.append(line)
    return lines


class World(unittest.TestCase):
    maxDiff = None
    place = None  # of the temporary folder; the system's for None

    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="kestrelon-test-", dir=self.place)
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.mailbox = self.folder / "mailbox"
        for name in ("Contacts", "Tasks", "Calendar"):
            (self.mailbox / name).mkdir(parents=True)
        for name, text in [("khard", KHARD), ("khal", KHAL), ("todoman", TODOMAN)]:
            config = text.format(mailbox=self.mailbox, folder=self.folder)
            (self.folder / f"{name}.conf.py").write_text(config)
        # What is shown to the user comes out of a pipe, once.
        self.shown = self.folder / "shown"
        os.mkfifo(self.shown)
        opener = self.folder / "opener"
        opener.write_text(f'#!/bin/sh\nexec cat "$1" > {self.shown}\n')
        opener.chmod(0o700)
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": str(self.folder), "TMPDIR": str(self.folder),
            "LC_ALL": "C.UTF-8", "TZ": "Europe/Berlin", "KESTRELON_MAILBOX": str(self.mailbox),
            "KESTRELON_OPENER": "/bin/true",
        }

    def run_program(self, *command, text="", **environment):
        done = subprocess.run(command, input=text.encode(), capture_output=True, timeout=120,
                              env={**self.environment, **environment}, check=False)
        output = done.stdout.decode() + done.stderr.decode()
        self.assertEqual(done.returncode, 0, f"{command}: {output}")
        return done.stdout.decode()

    # --- the members ------------------------------------------------------------------------------

    def session(self, *calls, **environment):
        """Calls (member, arguments) on one control; their results. A message box fails the test."""
        lines = [json.dumps({"member": member, "args": arguments}) for member, arguments in calls]
        output = self.run_program(PROGRAM, "session", text="\n".join(lines) + "\n", **environment)
        answers = [json.loads(line) for line in output.splitlines()]
        self.assertEqual(len(answers), len(calls))
        for call, answer in zip(calls, answers):
            self.assertEqual((answer["messages"], answer.get("error")), ([], None), call)
        return [answer["result"] for answer in answers]

    def member(self, name, **arguments):
        return self.session((name, arguments))[0]

    def export(self, *records, overwrite=True):
        calls = [("AddUpdateContactXML", {"ContactRecordXML": xml,
                                          "overwriteKestrelonIDMatch": overwrite,
                                          "overwriteEmailNameMatch": overwrite}) for xml in records]
        results = self.session(("SetContactFolder", {"foldername": "Contacts"}), *calls)
        self.assertEqual(results[1:], [True] * len(records))

    def pairs(self, member, **arguments):
        """A list of the page's as {name: id}."""
        pieces = self.member(member, **arguments).split("#~")
        self.assertEqual(pieces.pop(), "")
        return dict(zip(pieces[::2], pieces[1::2]))

    def store_id(self, entry_id):
        self.run_program(PROGRAM, "mailbox", "open")
        self.run_program(PROGRAM, "mailbox", "select", entry_id)
        return self.member("GetOutlookSelection").split(",")[1]

    def show_by(self, member, **arguments):
        """What the user gets to see, as bytes."""
        with subprocess.Popen(["timeout", "60", "cat", self.shown], stdout=subprocess.PIPE) as pipe:
            self.member_with_opener = self.session((member, arguments),
                                                   KESTRELON_OPENER=str(self.folder / "opener"))
            return pipe.stdout.read()

    # --- the files and the other programs ---------------------------------------------------------

    def only_file(self, folder, suffix):
        (path,) = (self.mailbox / folder).glob(f"*{suffix}")
        return path

    def khard(self, *arguments, text=""):
        return self.run_program("khard", "-c", str(self.folder / "khard.conf.py"), *arguments,
                                text=text)

    def khal(self, *arguments):
        return self.run_program("khal", "-c", str(self.folder / "khal.conf.py"), *arguments)

    def todoman(self, *arguments):
        return self.run_program("todoman", "--config", str(self.folder / "todoman.conf.py"),
                                *arguments)

    def assert_untouched(self, before, after, concerned):
        """Every line but the concerned ones is still there, byte for byte and in its place."""
        self.assertNotEqual(before, after, "nothing was written")
        rest = iter(content_lines(after))
        for line in content_lines(before):
            if not re.match(concerned, line, re.I):
                self.assertTrue(any(line == other for other in rest),
                                f"{line!r} is gone or moved in\n{after.decode(errors='replace')}")
