"""Drives the built program from outside: members, call, session and the trace."""

import email
import email.policy
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

PROGRAM = pathlib.Path(os.environ["KESTRELON_PROGRAM"])
EXAMPLES = pathlib.Path(os.environ["KESTRELON_EXAMPLES"])
HERE = pathlib.Path(__file__).resolve().parent
LETTER = "<Data><field name='n' templatetag='firstname'/><Data><r fieldname='n' value='Zoë &amp; Co'/></Data></Data>"


class World(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="kestrelon-test-")
        self.addCleanup(self.folder.cleanup)
        self.home = pathlib.Path(self.folder.name)
        self.environment = {
            **os.environ,
            "KESTRELON_MAILBOX": str(self.home / "mailbox"),
            "KESTRELON_OPENER": "",
            "DISPLAY": "",
            "WAYLAND_DISPLAY": "",
            "TMPDIR": self.folder.name,
            "LC_ALL": "C.UTF-8",
        }

    def run_program(self, *arguments, text=""):
        return subprocess.run(
            [PROGRAM, *arguments], input=text, env=self.environment, text=True,
            capture_output=True, timeout=300, check=False,
        )

    def session(self, *requests):
        lines = [r if isinstance(r, str) else json.dumps(r) for r in requests]
        done = self.run_program("session", text="\n".join(lines) + "\n")
        self.assertEqual(done.returncode, 0, done.stderr)
        answers = [json.loads(line) for line in done.stdout.splitlines()]
        self.assertEqual(len(answers), len(requests))
        return answers


class Members(World):
    def test_lists_the_interface_for_programs(self):
        members = json.loads(self.run_program("members", "--json").stdout)
        self.assertEqual(len(members), 54)
        by_name = {member["name"]: member for member in members}
        self.assertEqual(by_name["ServerName"]["kind"], "propertyput")
        self.assertEqual(
            by_name["OpenFile"]["parameters"],
            [
                {"name": "filePath", "type": "String", "optional": False},
                {"name": "ManagedStorage", "type": "Boolean", "optional": True, "default": False},
            ],
        )

    def test_keeps_the_interface_that_pages_rely_on(self):
        self.assertEqual(self.run_program("members").stdout,
                         (HERE / "members.txt").read_text(encoding="utf-8"))


class Call(World):
    def test_prints_the_result(self):
        done = self.run_program("call", "getversion")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "5.8.0\n", ""))

    def test_refuses_a_bad_command_line_with_a_reason(self):
        cases = [
            (["call", "NoSuchMember"], "members"),
            (["call", "CreateMessage", "strMessage=a"], "intButtons"),
            (["call", "CreateMessage", "colour=red"], "strTitle"),
            (["call", "CreateMessage", "strMessage"], "NAME=VALUE"),
            (["call", "CreateMessage", "strMessage=a", "intButtons=x", "strTitle="], "intButtons"),
            (["call", "CreateLetterXML", "xmlDoc=<a>", "template="], "xmlDoc"),
            (["call", "CreateLetterXML", "xmlDoc=@/missing", "template="], "/missing"),
            (["--trace", "/missing/trace", "members"], "/missing/trace"),
            (["dance"], ""),
            ([], ""),
        ]
        for arguments, hint in cases:
            with self.subTest(arguments):
                done = self.run_program(*arguments)
                self.assertEqual(done.returncode, 2, done.stderr)
                self.assertIn(hint, done.stderr)
                self.assertEqual(done.stdout, "")

    def test_prints_an_error_that_the_member_raises(self):
        done = self.run_program("call", "ServerName", "value=short")
        self.assertEqual(done.returncode, 3)
        self.assertEqual(done.stderr, "error 13: Type mismatch\n")

    def test_lists_the_lines_of_the_example_configuration(self):
        self.environment["KESTRELON_CONFIG"] = str(EXAMPLES / "config.json")
        self.assertEqual(self.run_program("call", "GetTapiDrivers").stdout, "Desk phone~Headset\n")

    def test_shows_message_boxes_beside_the_result(self):
        done = self.run_program("call", "CreateMessage", "strMessage=@@home", "intButtons=0", "strTitle=T")
        self.assertEqual((done.stdout, done.stderr), ("1\n", "[T] @home\n"))
        done = self.run_program("call", "CreateContactLetter", "oHTMLDoc=<p>", "template=")
        self.assertEqual(done.stderr, "[KNControl2005] This interface has been removed\n")


class Session(World):
    def test_answers_one_line_a_call_and_writes_arguments_back(self):
        first, second, third = self.session(
            {"member": "ServerName", "args": {"value": "http://host/page"}},
            {"member": "CreateMessage",
             "args": {"strMessage": "Sure?", "intButtons": 4, "strTitle": "Q"}, "answers": [7]},
            {"member": "CreateContactLetter", "args": {"oHTMLDoc": None, "template": ""}},
        )
        self.assertEqual(first, {"result": None, "args": {"value": "host"}, "messages": []})
        self.assertEqual(second["result"], 7)
        self.assertEqual(second["messages"], [{"text": "Sure?", "flags": 4, "title": "Q"}])
        self.assertEqual(third["messages"][0]["title"], None)

    def test_goes_on_after_bad_requests(self):
        bad = [
            ("{", 5), ("[]", 5), ('{"member":1}', 5), ('{"member":"GetVersion","more":1}', 5),
            ('{"member":"GetVersion","args":[]}', 5), ('{"member":"GetVersion","answers":["x"]}', 5),
            ('{"member":"GetVersion","answers":[99999999999]}', 5),
            ('{"member":"AddAppointment","args":{"acid":' + "[" * 100000 + "]" * 100000 + "}}", 5),
            ('{"member":"Nothing"}', 438), ('{"member":"GetVersion","args":{"a":1}}', 448),
            ('{"member":"CreateMessage"}', 449),
            ('{"member":"CreateLetterXML","args":{"xmlDoc":"<a>","template":""}}', 5),
            ('{"member":"CreateLetterXML","args":{"xmlDoc":{"file":"/missing"},"template":""}}', 53),
            ('{"member":"CreateMessage","args":{"strMessage":null,"intButtons":0,"strTitle":""}}', 94),
        ]
        answers = self.session(*[line for line, _ in bad], {"member": "GetVersion"})
        for (line, number), answer in zip(bad, answers):
            self.assertEqual(answer["error"]["number"], number, line)
            self.assertTrue(answer["error"]["description"])
            self.assertEqual(answer["messages"], [])
        self.assertEqual(answers[-1]["result"], "5.8.0")

    def letter(self, **arguments):
        return {"member": "CreateLetterXML",
                "args": {"xmlDoc": LETTER, "template": str(EXAMPLES / "Letter.dotx"), **arguments}}

    def test_makes_a_letter_from_markup_and_from_a_file(self):
        (self.home / "record.xml").write_text(
            "<?xml version='1.0' encoding='windows-1252'?>" + LETTER, encoding="windows-1252")
        for name, document in [("a", LETTER), ("b", {"file": str(self.home / "record.xml")})]:
            path = self.home / f"{name}.docx"
            (answer,) = self.session(self.letter(xmlDoc=document, strSavePath=str(path)))
            self.assertEqual(answer["messages"], [])
            self.assertNotIn("error", answer)
            with zipfile.ZipFile(path) as package:
                self.assertIn("Zoë &amp; Co", package.read("word/document.xml").decode())

    def test_mails_a_letter_as_a_draft(self):
        victim = self.home / "mailbox-victim"
        victim.write_text("mine")
        (self.home / "Attachment.Doc").symlink_to(victim)
        answers = self.session(
            self.letter(strEmailAddress="a@example.com", strMailMode="HTML", EmailSubject="Hallo ü"),
            self.letter(strEmailAddress="a@example.com", strMailMode="attach"),
        )
        self.assertEqual([answer["messages"] for answer in answers], [[], []])
        drafts = [
            email.message_from_bytes(path.read_bytes(), policy=email.policy.default)
            for path in (self.home / "mailbox" / "Drafts").glob("*.eml")
        ]
        drafts.sort(key=lambda draft: bool(list(draft.iter_attachments())))
        body, attached = drafts
        self.assertEqual(body["Subject"], "Hallo ü")
        self.assertEqual(body["To"], "a@example.com")
        self.assertEqual(body["X-Unsent"], "1")
        self.assertIn("Zoë", body.get_body(("html",)).get_content())
        self.assertIn("Zoë & Co", body.get_body(("plain",)).get_content())
        (part,) = attached.iter_attachments()
        self.assertEqual(part.get_filename(), "Attachment.Doc")
        self.assertTrue(part.get_content().startswith(b"\xd0\xcf\x11\xe0"))
        self.assertEqual(victim.read_text(), "mine", "a planted link was followed")
        leftovers = {path.name for path in self.home.iterdir()}
        self.assertEqual(leftovers, {"mailbox", "mailbox-victim", "Attachment.Doc"})


class Trace(World):
    def test_spells_out_every_call(self):
        trace = self.home / "trace.txt"
        template = str(EXAMPLES / "Letter.dotx")
        done = self.run_program(
            "--trace", str(trace), "call", "CreateLetterXML", f"xmlDoc={LETTER}",
            f"template={template}", f"strSavePath={self.home / 'a.docx'}")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        lines = trace.read_text(encoding="utf-8").splitlines()
        document = f'Word.Application.Documents.Add("{template}")'
        for line in [
            'CreateObject("Word.Application")', document, f"{document}.Select()",
            'Word.Application.Selection.Find.Text = "<firstname>"'.replace("Text", "text"),
            "Word.Application.Selection.Find.Found -> True",
            'Word.Application.Selection.TypeText("Zoë & Co")',
            f"{document}.Range(Start:=0, End:=0).Select()", "Word.Application.Visible = True",
        ]:
            self.assertIn(line, lines)
        done = self.run_program("--trace", str(trace), "call", "CheckForOutlook")
        self.assertEqual(
            trace.read_text(encoding="utf-8"),
            'GetRunningObject("Outlook.Application") ! error 429: ActiveX component can\'t create object\n')


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v"])
