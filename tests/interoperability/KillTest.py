"""A bulk export is killed at random moments: each card is whole, old or new, and a rerun finishes.

Rounds come in pairs: the first is killed while it fills an empty folder, and is run again to its
end; the second while it overwrites the full one. KESTRELON_SEED repeats a run, KESTRELON_ROUNDS says
how many (200).
"""

import json
import os
import random
import re
import shutil
import subprocess
import time
import unittest

from World import PROGRAM, World, record

RECORDS = 250
IDS = [f"{{{number:04}}}" for number in range(RECORDS)]


class Kill(World):
    # A killed program loses nothing that the system has; so memory does, and is faster than a disk.
    place = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None

    def requests(self, job):
        """The whole export, as a file of requests; `job` tells the states of a card apart."""
        lines = [json.dumps({"member": "SetContactFolder", "args": {"foldername": "Contacts"}})]
        for number, id in enumerate(IDS):
            xml = record(id, FIRSTNAME="Zoë", LASTNAME=f"Nr. {number}", JOBTITLE=job,
                         HOBBY=f"{job} " * (number % 7 * 60))
            lines.append(json.dumps({"member": "AddUpdateContactXML", "args": {
                "ContactRecordXML": xml, "overwriteKestrelonIDMatch": True,
                "overwriteEmailNameMatch": False}}))
        path = self.folder / "requests"
        path.write_text("\n".join(lines) + "\n")
        return path

    def export_and_kill(self, job, dice):
        with open(self.requests(job), "rb") as requests, subprocess.Popen(
                [PROGRAM, "session"], stdin=requests, stdout=subprocess.PIPE,
                env=self.environment) as session:
            for _ in range(dice.randrange(RECORDS)):
                session.stdout.readline()
            time.sleep(dice.uniform(0, 0.002))
            session.kill()

    def export_all(self, job):
        with open(self.requests(job), "rb") as requests:
            done = subprocess.run([PROGRAM, "session"], stdin=requests, capture_output=True,
                                  env=self.environment, timeout=120, check=True)
        answers = [json.loads(line) for line in done.stdout.splitlines()][1:]
        self.assertEqual([answer["result"] for answer in answers], [True] * RECORDS, answers[-1])

    def cards(self, *jobs):
        """{CRM id: job} of the folder, after a check that every card is whole."""
        jobs_of_ids = {}
        paths = list((self.mailbox / "Contacts").glob("[!.]*"))
        for path in paths:
            text = path.read_bytes().decode()
            self.assertTrue(text.startswith("BEGIN:VCARD\r\n"), path)
            self.assertTrue(text.endswith("\r\nEND:VCARD\r\n"), path)
            text = text.replace("\r\n ", "")
            (id,) = re.findall(r"X-NAME=KESTID\b.*?(\{\d+\})", text)
            (job,) = re.findall(r"^TITLE:(.*)\r$", text, re.M)
            self.assertIn(job, jobs)
            self.assertEqual(text.count(job) - 1, int(id[1:-1]) % 7 * 60, "a card is one state")
            self.assertNotIn(id, jobs_of_ids, "a record came in twice")
            jobs_of_ids[id] = job
        listed = json.loads(self.run_program(PROGRAM, "mailbox", "list", "contacts", "--json"))
        self.assertEqual(sorted(item["name"] for item in listed),
                         sorted(f"Zoë Nr. {int(id[1:-1])}" for id in jobs_of_ids))
        return jobs_of_ids

    def test_leaves_whole_cards(self):
        seed = os.environ.get("KESTRELON_SEED") or str(random.randrange(10**9))
        print(f"KESTRELON_SEED={seed}", flush=True)
        unfinished = 0
        for number in range(int(os.environ.get("KESTRELON_ROUNDS", "200")) // 2):
            dice = random.Random(f"{seed}-{number}")
            with self.subTest(seed=seed, pair=number):
                shutil.rmtree(self.mailbox)
                self.export_and_kill("first", dice)
                unfinished += len(self.cards("first")) < RECORDS
                self.export_all("second")
                self.assertEqual(self.cards("second"), dict.fromkeys(IDS, "second"))
                self.export_and_kill("third", dice)
                after = self.cards("second", "third")
                self.assertEqual(sorted(after), IDS)
                unfinished += "second" in after.values()
        self.assertGreater(unfinished, 0, "no export was caught in its middle")


if __name__ == "__main__":
    unittest.main()
