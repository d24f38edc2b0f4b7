"""Contacts: what members write, khard and vobject read; what khard writes, members read."""

import email
import email.policy
import unittest

import vobject

from World import World, record

FIELDS = {
    "ACCOUNT_NAME": "Käse & Söhne; GmbH, 王", "TITLE": "Dr", "FIRSTNAME": "Zoë",
    "MIDDLENAME": "Ana, Maria", "LASTNAME": "Müller; Peña", "JOBTITLE": "Leiterin \\ Einkauf",
    "DEPARTMENT": "Einkauf, Süd", "BUSINESSADDRESSSTREET": "Hauptstr. 1",
    "BUSINESSADDRESSSTREET2": "2. Stock; links", "BUSINESSADDRESSSTREET3": "Tür 3",
    "BUSINESSADDRESSCITY": "Köln", "BUSINESSADDRESSSTATE": "NRW",
    "BUSINESSADDRESSPOSTALCODE": "50667", "BUSINESSADDRESSCOUNTRY": "Deutschland",
    "BUSINESSTELEPHONENUMBER": "+49 221 1", "BUSINESSFAXNUMBER": "+49 221 2",
    "BUSINESSHOMEPAGE": "https://example.com/käse?a=1&b=%20", "HOMEADDRESSSTREET": "Nebenweg 2",
    "HOMEADDRESSSTREET2": "Hof", "HOMEADDRESSSTREET3": "Rückseite", "HOMEADDRESSCITY": "Bonn",
    "HOMEADDRESSSTATE": "Rhein", "HOMEADDRESSPOSTALCODE": "53111",
    "HOMEADDRESSCOUNTRY": "Allemagne", "HOMETELEPHONENUMBER": "+49 228 3",
    "HOMEFAXNUMBER": "+49 228 4", "EMAIL1ADDRESS": "zoe@example.com",
    "EMAIL2ADDRESS": "zm@example.org", "EMAIL3ADDRESS": "z@example.net",
    "MOBILETELEPHONENUMBER": "+49 170 5", "HOBBY": "Segeln, 書道 " * 20 + "Ende",
    "NICKNAME": "Zo", "SPOUSE": "Élodie", "MANAGERNAME": "Åsa Ek", "REFERREDBY": "Jürgen",
    "ASSISTANTNAME": "Łukasz", "ASSISTANTTELEPHONENUMBER": "+49 221 6",
}

KHARD_CARD = """First name: Jürgen
Last name: Müller
Organisation:
  - Käse & Co
  - Einkauf
Phone:
  work,voice: "+49 30 1"
  cell: "+49 170 2"
  pager: "+49 30 9"
Email:
  work: jm@example.com
  home: j@example.net
Address:
  work:
    Street: |
      Hauptstraße 1
      Hinterhaus
    City: Köln
    Code: "50667"
    Country: Deutschland
Note: |
  Zeile eins
  Zeile zwei
Categories: Freunde
Birthday: 1971-04-02
"""

# What an export rewrites in a card.
CONCERNED = (rb"(item1\.)?(N|FN|ORG|TITLE|ADR;(TYPE=)?(work|home)|TEL;([^:]*)(work|cell|home|voice|fax)"
             rb"|EMAIL|URL|NICKNAME|REV|X-KESTRELON|X-SPOUSE|X-MANAGER|X-ASSISTANT)[^A-Z]")


class Written(World):
    def setUp(self):
        super().setUp()
        self.export(record("{4711-Ä}", **FIELDS))
        self.path = self.only_file("Contacts", ".vcf")

    def test_every_field_is_read_by_vobject(self):
        content = self.path.read_bytes()
        for line in content.split(b"\r\n"):
            self.assertLessEqual(len(line), 75)
            line.decode()  # no character is cut in two
        card = vobject.readOne(content.decode())
        name = card.n.value
        self.assertEqual((name.prefix, name.given, name.additional, name.family),
                         ("Dr", "Zoë", "Ana, Maria", "Müller; Peña"))
        for part in ("Zoë", "Müller; Peña"):
            self.assertIn(part, card.fn.value)
        self.assertEqual(card.org.value, ["Käse & Söhne; GmbH, 王", "Einkauf, Süd"])
        self.assertEqual(card.title.value, "Leiterin \\ Einkauf")
        self.assertEqual([line.value for line in card.email_list],
                         ["zoe@example.com", "zm@example.org", "z@example.net"])
        self.assertIn("https://example.com/käse?a=1&b=%20", [line.value for line in card.url_list])
        self.assertEqual(card.nickname.value, "Zo")
        values = [line.value for line in card.getChildren()]
        for field in ("HOBBY", "SPOUSE", "MANAGERNAME", "REFERREDBY", "ASSISTANTNAME",
                      "ASSISTANTTELEPHONENUMBER"):
            self.assertIn(FIELDS[field], values)

        def typed(lines, *types):
            return [line.value for line in lines
                    if {t.lower() for t in line.params.get("TYPE", [])} >= set(types)]
        (work,), (home,) = typed(card.adr_list, "work"), typed(card.adr_list, "home")
        self.assertEqual([work.street, work.city, work.region, work.code, work.country],
                         ["Hauptstr. 1\n2. Stock; links\nTür 3", "Köln", "NRW", "50667",
                          "Deutschland"])
        self.assertEqual([home.street, home.city, home.region, home.code, home.country],
                         ["Nebenweg 2\nHof\nRückseite", "Bonn", "Rhein", "53111", "Allemagne"])
        self.assertEqual(typed(card.tel_list, "work", "fax"), ["+49 221 2"])
        self.assertEqual(typed(card.tel_list, "home", "fax"), ["+49 228 4"])
        self.assertEqual(typed(card.tel_list, "cell"), ["+49 170 5"])
        self.assertIn("+49 221 1", typed(card.tel_list, "work"))
        self.assertIn("+49 228 3", typed(card.tel_list, "home"))
        stamps = {line.params["X-NAME"][0]: line.value
                  for line in card.contents["x-kestrelon-property"]}
        self.assertEqual(stamps, {"KESTID": "{4711-Ä}", "Kestrelon": "true"})

    def test_khard_shows_it(self):
        shown = self.khard("show", "Zoë")
        for text in ("Käse & Söhne", "2. Stock; links", "50667 Köln", "zm@example.org"):
            self.assertIn(text, shown)
        self.assertIn("+49 170 5", self.khard("phone", "--parsable", "zoe@example.com"))


class Sent(World):
    def test_one_travels_as_a_card(self):
        values = {"FIRSTNAME": "Zoë", "LASTNAME": "Müller", "BUSINESSADDRESSSTREET": "Weg 1",
                  "BUSINESSADDRESSSTREET3": "Hof", "BIRTHDAY": "1971-04-02"}
        names = [*FIELDS, "AC_NAME", "WEBPAGE", "SENSITIVITY", "SUFFIX", "PERSONALHOMEPAGE",
                 "BIRTHDAY", "ANNIVERSARY"]
        page = "".join(f'<input id="{name}" value="{values.get(name, "")}">' for name in names)
        self.assertIs(self.member("CreateContactAsvCard", oHTMLDoc=page), True)
        draft = self.only_file("Drafts", ".eml").read_bytes()
        message = email.message_from_bytes(draft, policy=email.policy.default)
        (part,) = message.iter_attachments()
        self.assertEqual((message["Subject"], message["X-Unsent"], part.get_filename()),
                         ("FW: Zoë Müller", "1", "Zoë Müller.vcf"))
        content = part.get_content()
        card = vobject.readOne(content if isinstance(content, str) else content.decode())
        self.assertEqual((card.n.value.family, card.adr.value.street), ("Müller", "Weg 1\nHof"))
        self.assertEqual(card.bday.value.replace("-", ""), "19710402")
        self.assertEqual(list((self.mailbox / "Contacts").glob("*.vcf")), [])


class Read(World):
    def read_and_overwrite(self):
        """What the one card in the folder is for the page, and what an export leaves of it."""
        path = self.only_file("Contacts", ".vcf")
        before = path.read_bytes()
        ids = self.pairs("GetFolderContactItems", foldertosearch="")
        self.assertEqual(list(ids), ["Jürgen Müller"])
        fields = self.member("ImportContact", foldername="",
                             contactname=ids["Jürgen Müller"]).split("#~")
        self.assertEqual(fields[1:3], ["Jürgen", "Müller"])
        self.assertEqual([fields[5], fields[6], fields[8], *fields[9:14]],
                         ["jm@example.com", "+49 30 1", "+49 170 2", "Hauptstraße 1", "\nHinterhaus",
                          "", "Köln", "50667"])

        self.assertEqual(self.member("SetImportID", strItemID="77", strEntryID=ids["Jürgen Müller"],
                                     strItemType="contact"), "")
        stamped = path.read_bytes()
        self.assert_untouched(before, stamped, rb"REV[:;]")
        self.export(record("{9}", FIRSTNAME="Jürgen", LASTNAME="Müller", MIDDLENAME="K.",
                           EMAIL1ADDRESS="jm@example.com", BUSINESSTELEPHONENUMBER="+49 30 77",
                           BUSINESSADDRESSCITY="Mainz"))
        self.assertEqual(self.only_file("Contacts", ".vcf"), path, "it was matched, not added")
        after = path.read_bytes()
        self.assert_untouched(stamped, after, CONCERNED)
        self.assertEqual(self.pairs("GetUnsyncedContacts", foldertosearch=""), {})
        (name,) = self.pairs("GetFolderContactItems", foldertosearch="")
        self.assertIn("K.", name)
        return after

    def test_a_card_of_khard(self):
        for version in ("3.0", "4.0"):
            with self.subTest(version):
                self.khard("new", "--vcard-version", version, "-a", "contacts", text=KHARD_CARD)
                after = self.read_and_overwrite()
                self.assertIn(b"CATEGORIES:Freunde", after)
                shown = self.khard("show", "Jürgen")
                for text in ("Müller", "+49 30 77", "Mainz", "jm@example.com"):
                    self.assertIn(text, shown)
                self.only_file("Contacts", ".vcf").unlink()


if __name__ == "__main__":
    unittest.main()
