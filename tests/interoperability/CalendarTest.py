"""Appointments and tasks: khal, todoman and icalendar on one side, the members on the other."""

import json
import unittest

import icalendar

from World import World

CHANGED = rb"(DTSTAMP|LAST-MODIFIED|SEQUENCE)[:;]"


def components(content, name):
    return icalendar.Calendar.from_ical(content).walk(name)


class Appointments(World):
    def stamp(self, subject):
        """Stamps the one unsynchronised appointment, which must have this subject."""
        appointments = self.pairs("GetUnsyncedAppts")
        self.assertEqual(list(appointments), [subject])
        entry_id = appointments[subject]
        self.assertTrue(self.member(
            "SetItemAsKestrelon", ItemType="Appointment", StoreID=self.store_id(entry_id),
            OutlookID=entry_id, AccountID="Ä1", ItemID="{GUID-1}"))
        self.assertEqual(self.member("GetUnsyncedAppts") or "", "")

    def test_one_of_khal_is_stamped(self):
        self.khal("new", "-a", "calendar", "-l", "Büro; 2. Stock", "2026-11-25", "10:00", "11:30",
                  "Treffen Köln", "::", "Notiz, zwei\nZeilen")
        path = self.only_file("Calendar", ".ics")
        before = path.read_bytes()
        self.stamp("Treffen Köln")
        after = path.read_bytes()
        self.assert_untouched(before, after, CHANGED)
        (event,) = components(after, "VEVENT")
        stamps = {str(line.params["X-NAME"]): str(line)
                  for line in event["X-KESTRELON-PROPERTY"]}
        self.assertEqual(stamps, {"Kestrelon": "true", "guid": "{GUID-1}", "ACID": "Ä1"})
        self.assertIn("10:00-11:30 Treffen Köln", self.khal("list", "2026-11-25", "2026-11-26"))

    def test_a_new_one_is_shown_as_a_file_that_calendars_take(self):
        content = self.show_by(
            "NewAppointment", AccountInfo="A-Ü¬subject=Rückruf; bald, ja¬location=Büro\\3",
            ServerName="crm.example.com", VirtualDirectory="d", SecureMode=True)
        self.assertEqual(self.member_with_opener, [""])
        (event,) = components(content, "VEVENT")
        self.assertEqual((event["SUMMARY"], event["LOCATION"], event["DESCRIPTION"]), (
            "Rückruf; bald, ja", "Büro\\3",
            "https://crm.example.com/d/Kestrelon.ASPX?Page=Account&ItemID=A-Ü"))
        self.assertLess(event.decoded("DTSTART"), event.decoded("DTEND"))
        self.assertEqual(list((self.mailbox / "Calendar").glob("*.ics")), [], "not saved by itself")
        (self.folder / "new.ics").write_bytes(content)
        self.khal("import", "--batch", "-a", "calendar", str(self.folder / "new.ics"))
        day = event.decoded("DTSTART").strftime("%Y-%m-%d")
        self.assertIn("Rückruf; bald, ja", self.khal("list", day, "3d"))


class Tasks(World):
    def import_task(self, subject):
        (entry_id,) = self.pairs("GetFolderTaskItems", foldertosearch="").values()
        fields = self.member("ImportTask", foldername="", taskName=entry_id).split("#~")
        self.assertEqual((len(fields), fields[10], fields[12]), (14, subject, entry_id))
        return fields, entry_id

    def test_one_of_todoman_is_imported_stamped_and_done(self):
        self.todoman("new", "-l", "Tasks", "-d", "2026-12-01", "--priority", "high",
                     "Angebot für Köln; zwei, drei")
        path = self.only_file("Tasks", ".ics")
        before = path.read_bytes()
        fields, entry_id = self.import_task("Angebot für Köln; zwei, drei")
        self.assertEqual(fields[2:6], ["0", "", "2026-12-01 00:00:00.000", "2"])
        self.assertEqual(fields[8], "4501-01-01 00:00:00.000")
        self.assertEqual(self.member("SetImportID", strItemID="T-1", strEntryID=entry_id,
                                     strItemType="task"), "")
        self.assert_untouched(before, path.read_bytes(), CHANGED)
        self.assertEqual(self.member("CheckIfSynchronised", strEntryID="T-1", strItemType="task"),
                         "Angebot für Köln; zwei, drei in folder Tasks.")
        (task,) = json.loads(self.todoman("--porcelain", "list"))
        self.assertEqual((task["summary"], task["completed"]),
                         ("Angebot für Köln; zwei, drei", False))

        self.todoman("done", str(task["id"]))
        fields, _ = self.import_task("Angebot für Köln; zwei, drei")
        (todo,) = components(path.read_bytes(), "VTODO")
        self.assertEqual(fields[2], "1")
        self.assertEqual(fields[3][:10], todo.decoded("COMPLETED").strftime("%Y-%m-%d"))
        self.assertEqual((fields[6], fields[9]), ("100", "2"))
        self.assertEqual(self.member("CheckIfSynchronised", strEntryID="T-1", strItemType="task"),
                         "Angebot für Köln; zwei, drei in folder Tasks.",
                         "todoman kept the stamp")

if __name__ == "__main__":
    unittest.main()
