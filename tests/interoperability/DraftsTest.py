"""Drafts, as Python's e-mail package reads them."""

import email
import email.policy
import unittest

import vobject

from World import World

FIELDS = ["TITLE", "FIRSTNAME", "LASTNAME", "JOBTITLE", "DEPARTMENT", "AC_NAME",
          "BUSINESSADDRESSSTREET", "BUSINESSADDRESSSTREET2", "BUSINESSADDRESSSTREET3",
          "BUSINESSADDRESSCITY", "BUSINESSADDRESSSTATE", "BUSINESSADDRESSPOSTALCODE",
          "BUSINESSADDRESSCOUNTRY", "EMAIL1ADDRESS", "EMAIL2ADDRESS", "EMAIL3ADDRESS",
          "BUSINESSTELEPHONENUMBER", "BUSINESSFAXNUMBER", "MOBILETELEPHONENUMBER", "WEBPAGE",
          "MANAGERNAME", "REFERREDBY", "ASSISTANTNAME", "ASSISTANTTELEPHONENUMBER",
          "HOMEADDRESSSTREET", "HOMEADDRESSSTREET2", "HOMEADDRESSSTREET3", "HOMEADDRESSCITY",
          "HOMEADDRESSSTATE", "HOMEADDRESSPOSTALCODE", "HOMEADDRESSCOUNTRY", "SENSITIVITY", "SUFFIX",
          "HOMETELEPHONENUMBER", "HOMEFAXNUMBER", "PERSONALHOMEPAGE", "BIRTHDAY", "HOBBY",
          "NICKNAME", "SPOUSE", "MIDDLENAME", "ANNIVERSARY"]


class Drafts(World):
    def draft(self, member, **arguments):
        self.assertIs(self.member(member, **arguments), True)
        path = self.only_file("Drafts", ".eml")
        message = email.message_from_bytes(path.read_bytes(), policy=email.policy.default)
        self.assertEqual((message["X-Unsent"], message.defects), ("1", []))
        self.assertTrue(all(not part.defects for part in message.walk()))
        return message

    def test_replies_quote_the_original(self):
        text = "Käse & Brot, " + "lange Zeilen " * 100
        for body, kind in [(text + "\r\n.\r\nFrom hier", "plain"), (f"<html>{text}</html>", "html")]:
            with self.subTest(kind):
                message = self.draft(
                    "SendEmailWithOriginal", strAddress='"Peña, Zoë" <zoe@example.com>',
                    strFrom="Zoë", strSent="20.11.2026", strTo="Jürgen", strSubject="Grüße",
                    strBody=body)
                self.only_file("Drafts", ".eml").unlink()
                self.assertEqual(message["Subject"], "RE: Grüße")
                self.assertEqual([(a.display_name, a.addr_spec) for a in message["To"].addresses],
                                 [("Peña, Zoë", "zoe@example.com")])
                content = message.get_body((kind,)).get_content()
                self.assertIn("\n".join(body.splitlines()), "\n".join(content.splitlines()))
                plain = message.get_body(("plain",)).get_content()
                for line in ("-----Original Message-----", "From:Zoë", "Subject:Grüße"):
                    self.assertIn(line, plain.splitlines())
                self.assertIn(text[:12], plain)

    def test_a_contact_travels_as_a_card_without_what_only_the_mailbox_means(self):
        values = {"FIRSTNAME": "Zoë", "LASTNAME": "Müller", "BUSINESSADDRESSSTREET": "Weg 1",
                  "BUSINESSADDRESSSTREET3": "Hof", "BIRTHDAY": "1971-04-02"}
        page = "".join(f'<input id="{name}" value="{values.get(name, "")}">' for name in FIELDS)
        message = self.draft("CreateContactAsvCard", oHTMLDoc=page)
        (part,) = message.iter_attachments()
        self.assertTrue(part.get_filename().endswith(".vcf"))
        content = part.get_content()
        text = content if isinstance(content, str) else content.decode()
        self.assertNotIn("X-KESTRELON-PROPERTY", text)
        card = vobject.readOne(text)
        self.assertEqual((card.n.value.family, card.adr.value.street), ("Müller", "Weg 1\nHof"))
        self.assertEqual(card.bday.value.replace("-", ""), "19710402")
        self.assertEqual(list((self.mailbox / "Contacts").glob("*.vcf")), [])


if __name__ == "__main__":
    unittest.main()
