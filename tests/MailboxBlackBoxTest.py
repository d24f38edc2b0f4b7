"""Drives `kestrelon mailbox` from outside, on a real mailbox folder."""

import json
import subprocess
import sys
import unittest

from BlackBoxTest import PROGRAM, World

ANN = "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:ann\r\nFN:Ann \x1b[2JLee\r\nN:Lee;Ann;;;\r\nNOTE:one\\ntwo\r\nTEL;TYPE=CELL:5\r\nEND:VCARD\r\n"
BOARD = "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:board\r\nKIND:group\r\nFN:Board\r\nMEMBER:urn:uuid:ann\r\nEND:VCARD\r\n"
TASK = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\nBEGIN:VTODO\r\nUID:t\r\nDTSTAMP:20261101T000000Z\r\nSUMMARY:Käse kaufen\r\nEND:VTODO\r\nEND:VCALENDAR\r\n"
MAIL = "From: zoe@example.com\r\nTo: me@example.com\r\nSubject: Hallo\r\n\r\nText\r\n"


class Mailbox(World):
    def mailbox(self, *arguments, status=0):
        done = self.run_program("mailbox", *arguments)
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertEqual(done.stderr == "", status == 0, done.stderr)
        self.error = done.stderr
        return json.loads(done.stdout) if "--json" in arguments else done.stdout

    def file(self, name, *items):
        path = self.home / name
        path.write_bytes("".join(items).encode())
        return str(path)

    def import_all(self):
        """The ids of what came in, by name."""
        files = self.mailbox("import", "--json", self.file("a.vcf", ANN, BOARD),
                             self.file("t.ics", TASK), self.file("m.eml", MAIL))
        return {item["name"]: item["id"] for file in files for item in file["items"]}

    def test_shows_folders_as_a_tree(self):
        made = self.mailbox("new-folder", "Kunden & Co", "--kind", "contacts", "--json")
        self.assertEqual((made["path"], made["kind"]), ("Contacts/Kunden & Co", "contacts"))
        self.assertIn("Tasks/Später", self.mailbox("new-folder", "Später", "--kind", "tasks"))
        self.import_all()
        folders = {folder["path"]: folder for folder in self.mailbox("list", "--json")}
        self.assertEqual([(folders[path]["kind"], folders[path]["items"]) for path in
                          ("Contacts", "Contacts/Kunden & Co", "Tasks", "Tasks/Später", "Calendar")],
                         [("contacts", 2), ("contacts", 0), ("tasks", 1), ("tasks", 0),
                          ("calendar", 0)])
        self.assertIn(f"\n  Kunden & Co  contacts  0      {made['id']}\n", self.mailbox("list"))
        for name in (made["id"], "contacts/kunden & co", "KUNDEN & CO"):
            self.assertEqual(self.mailbox("list", name, "--json"), [])
        self.mailbox("new-folder", "kunden & CO", "--kind", "contacts", status=1)
        self.assertIn("Contacts/Kunden & Co", self.error)
        self.mailbox("list", "Nowhere", status=1)
        self.assertIn('"Nowhere"', self.error)

    def test_finds_folders_by_the_end_of_their_path(self):
        for path in ("Team", "Team/Old%2FGone", "Team/Clients", "Team/Clients/Team"):
            (self.home / "mailbox/Contacts" / path).mkdir(parents=True)
        for path in ("Team/Old%2FGone", "Team/Clients/Team"):
            (self.home / "mailbox/Contacts" / path / "ann.vcf").write_bytes(ANN.encode())
        for name, items in [("old/gone", 1), ("contacts/team/OLD/gone", 1), ("contacts/team", 0),
                            ("Contacts/Team/Clients/team", 1)]:
            self.assertEqual(len(self.mailbox("list", name, "--json")), items, name)
        self.mailbox("list", "team", status=1)

    def test_imports_lists_and_shows_items(self):
        ids = self.import_all()
        self.assertEqual(list(ids), ["Ann \x1b[2JLee", "Board", "Käse kaufen", "Hallo"])
        ann = ids["Ann \x1b[2JLee"]
        self.assertEqual(self.mailbox("list", "Contacts"),
                         f"contact  Ann [2JLee  {ann}\nlist     Board       {ids['Board']}\n")
        self.assertEqual(self.member_result("SetImportID", strItemID="{7}", strEntryID=ann,
                                            strItemType="contact"), "")
        item = self.mailbox("show", ann, "--json")
        self.assertEqual((item["kind"], item["folder"], item["userProperties"]),
                         ("contact", "Contacts", {"KESTID": "{7}"}))
        self.assertEqual(item["properties"]["MobileTelephoneNumber"], "5")
        self.assertNotIn("Birthday", item["properties"])
        self.assertNotIn("HomeTelephoneNumber", item["properties"])
        shown = self.mailbox("show", ann)
        self.assertRegex(shown, r"(?m)^Body +one\n +two$")
        self.assertRegex(shown, r"(?m)^KESTID +\{7\}$")
        self.assertNotIn("\x1b", shown)
        self.member_result("SetImportID", strItemID="", strEntryID=ann, strItemType="contact")
        self.assertEqual(self.mailbox("show", ann, "--json")["userProperties"], {"KESTID": ""})
        self.assertRegex(self.mailbox("show", ids["Käse kaufen"]), r"(?m)^Subject +Käse kaufen$")
        self.mailbox("show", "00FF", status=1)
        self.assertIn("00FF", self.error)

    def test_goes_on_after_a_bad_file(self):
        good, bad = self.file("a.vcf", ANN), self.file("bad.vcf", "no card")
        files = self.mailbox("import", bad, "/missing.vcf", good, "--json", status=1)
        self.assertEqual([len(file["items"]) for file in files], [0, 0, 1])
        self.assertTrue(files[0]["error"] and files[1]["error"])
        self.assertIn(bad, self.error)
        self.assertIn("/missing.vcf", self.error)
        self.assertEqual(len(self.mailbox("list", "Contacts", "--json")), 1)

    def member_result(self, member, **arguments):
        (answer,) = self.session({"member": member, "args": arguments})
        self.messages = [message["text"] for message in answer["messages"]]
        return answer["result"]

    def test_selects_what_pages_get(self):
        ids = self.import_all()
        task, mail = ids["Käse kaufen"], ids["Hallo"]
        self.assertIn("mailbox open", self.mailbox("select", task, mail))
        self.assertEqual(self.member_result("GetOutlookSelection"), "No Outlook")
        self.assertEqual(self.mailbox("open", "--json"), {"open": True, "changed": True})
        self.assertEqual(self.mailbox("open", "--json"), {"open": True, "changed": False})
        pieces = self.member_result("GetOutlookSelection").split(",")
        self.assertEqual(pieces[::2], [task, mail])
        self.mailbox("select", ids["Board"], "00FF", status=1)
        self.assertEqual(self.member_result("GetOutlookSelection").split(","), pieces)
        self.assertTrue(self.mailbox("select", mail.lower(), mail).startswith("1 item selected\n"))
        self.assertEqual(self.member_result("GetOutlookSelectionString"),
                         f"{mail}\\{pieces[1]}\\Hallo\\zoe@example.com\\me@example.com\\")
        self.assertEqual(self.mailbox("select", "--json"), {"selected": [], "open": True})
        self.assertEqual(self.member_result("GetOutlookSelection"), "")
        self.assertEqual(self.messages, ["Please select an item to add"])
        self.mailbox("close")
        self.assertEqual(self.member_result("GetOutlookSelection"), "No Outlook")

    def test_tells_a_bad_command_line_from_a_failure(self):
        for arguments in ([], ["dance"], ["show"], ["import"], ["list", "a", "b"],
                          ["new-folder", "x"], ["new-folder", "x", "--kind", "mails"]):
            with self.subTest(arguments):
                self.mailbox(*arguments, status=2)
        self.environment["KESTRELON_MAILBOX"] = self.file("mailbox")
        self.mailbox("list", status=1)

    def test_says_when_its_output_is_lost(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = subprocess.run([PROGRAM, "mailbox", "list"], stdout=full, stderr=subprocess.PIPE,
                                  env=self.environment, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"cannot be written", done.stderr)

    def test_traces_its_calls(self):
        trace = self.home / "trace"
        self.mailbox("list", "--trace", str(trace))
        self.assertIn('Outlook.Application.GetNamespace("MAPI").Folders\n', trace.read_text())


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v"])
