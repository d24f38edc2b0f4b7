#include <gmock/gmock.h>

#include <random>
#include <set>

#include "desktop/outlook/formats/ContactDocument.h"
#include "tests/desktop/outlook/Properties.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Puts = std::vector<std::pair<String, Value>>;

String TextOf(const ItemDocument& item, StringView property) { return item.Get(property).ToText(); }

std::string CardOf(std::string_view lines) {
  return "BEGIN:VCARD\r\n" + std::string(lines) + "END:VCARD\r\n";
}

// A folded one with groups and comments.
constexpr const char* kModern =
    "# exported\nBEGIN:VCARD\nVERSION:3.0\nUID:urn:uuid:1\nN:van der Berg;Ann;Mary,Lou;Dr.;\n"
    "FN:Dr. Ann van der\n  Berg\nitem1.EMAIL;type=INTERNET:a@example.org\nitem1.X-ABLabel:Office\n"
    "EMAIL;TYPE=\"internet,pref\":b@example.org\nTEL;TYPE=WORK;TYPE=FAX:1\nTEL;type=work,voice:2\n"
    "tel;TYPE=WORK,PREF:3\nTEL;TYPE=CELL:4\nTEL;TYPE=HOME:5\nTEL:6\n"
    "ADR;TYPE=WORK:;;1 High St\\nFloor 2\\, rear;Leeds;;LS1;UK\nADR;TYPE=HOME:;Flat 3;2 Low "
    "St;;;;\n"
    "ORG:Acme\\; Sons;R&D;Lab 3\nNOTE:a\\nb\\;c\\\\\nBDAY:1996-04-15\nCLASS:PRIVATE\n"
    "CATEGORIES:x,y\\,z\nitem2.X-ABRELATEDNAMES:Bob\nitem2.X-ABLABEL:_$!<Spouse>!$_\n"
    "X-EVOLUTION-MANAGER:Carl\nPHOTO;ENCODING=b:AAAA\n "
    "AAAA\nEND:VCARD\nBEGIN:VCARD\nFN:B\nEND:VCARD";

// Quoted-printable in two character sets, bare types, no FN.
constexpr const char* kOld =
    "BEGIN:VCARD\r\nVERSION:2.1\r\n"
    "N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;J=C3=BCrgen=3B;;;\r\n"
    "TEL;WORK;VOICE:1\r\nTEL;CELL:2\r\nORG;CHARSET=ISO-8859-1;QUOTED-PRINTABLE:Stra=DFe=\r\n;"
    "Bau\r\n"
    "ADR;WORK;ENCODING=QUOTED-PRINTABLE:;;Line 1=0D=0ALine 2;K\xF6ln;;50667;\r\nTITLE:Gr\xFC\xDF"
    "e\r\nEND:VCARD\r\n";

constexpr const char* kNew =
    "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Ann Mary Lee\r\nTEL;VALUE=uri;TYPE=\"work,voice\":"
    "tel:+1-555;ext=7\r\nTEL;TYPE=cell;PREF=2:1\r\nTEL;TYPE=cell;PREF=1;VALUE=uri:tel:2\r\n"
    "EMAIL;PREF=1:p@x\r\nBDAY:--0415\r\nANNIVERSARY:20090808T1430-0500\r\n"
    "RELATED;TYPE=spouse;VALUE=text:Bob\r\nEND:VCARD\r\n";

TEST(ContactDocument, ReadsTheCardsOfOtherPrograms) {
  const std::pair<const char*, String> cases[] = {
      {kModern,
       u"firstname=Ann | middlename=Mary Lou | title=Dr. | lastname=van der Berg | "
       u"fullname=Dr. Ann van der Berg | email1address=b@example.org | "
       u"email2address=a@example.org | email3address= | businessfaxnumber=1 | "
       u"businesstelephonenumber=3 | business2telephonenumber=2 | mobiletelephonenumber=4 | "
       u"hometelephonenumber=5 | othertelephonenumber=6 | "
       u"homeaddressstreet=Flat 3\r\n2 Low St | "
       u"businessaddressstreet=1 High St\r\nFloor 2, rear | "
       u"businessaddress=1 High St\r\nFloor 2, rear\r\nLeeds, LS1\r\nUK | "
       u"companyname=Acme; Sons | department=R&D | body=a\r\nb;c\\ | birthday=1996-04-15 | "
       u"sensitivity=2 | categories=x, y,z | spouse=Bob | managername=Carl | "
       u"fileas=van der Berg, Ann Mary Lou"},
      {kOld,
       u"lastname=Müller | firstname=Jürgen; | fullname=Jürgen; Müller | "
       u"businesstelephonenumber=1 | mobiletelephonenumber=2 | companyname=Straße | "
       u"department=Bau | businessaddressstreet=Line 1\r\nLine 2 | "
       u"businessaddresscity=Köln | jobtitle=Grüße"},
      {kNew,
       u"firstname=Ann Mary | lastname=Lee | businesstelephonenumber=+1-555 ext. 7 | "
       u"mobiletelephonenumber=2 | birthday=4501-01-01 | anniversary=2009-08-08 | spouse=Bob"},
  };
  for (const auto& [card, expected] : cases) {
    const auto item = ReadContact(card);
    ExpectProperties(*item, expected);
    EXPECT_EQ(item->content(), card);
  }
}

TEST(ContactDocument, AnUpdateChangesItsOwnLines) {
  struct Case {
    const char* card;
    Puts puts;
    std::vector<std::pair<std::string, std::string>> replaced;  // in the card's bytes
  };
  const Case cases[] = {
      {kModern,
       {{u"businesstelephonenumber", u"33"},
        {u"email1address", u"c@x"},
        {u"department", u""},
        {u"businessaddresscity", u"Yo,rk"},
        {u"middlename", u"May"},
        {u"managername", u""}},
       {{"PREF:3", "PREF:33"},
        {"pref\":b@example.org", "pref\":c@x"},
        {";R&D;", ";;"},
        {";Leeds;", ";Yo\\,rk;"},
        {";Mary,Lou;", ";May;"},
        {"X-EVOLUTION-MANAGER:Carl\n", ""},
        {"FN:Dr. Ann van der\n  Berg", "FN:Dr. Ann May van der Berg"}}},
      {kOld,
       {{u"jobtitle", u"Chef"}, {u"businessaddresscity", u"Bonn"}, {u"companyname", u"Ö; AG"}},
       {{"TITLE:Gr\xFC\xDF"
         "e",
         "TITLE:Chef"},
        {"ORG;CHARSET=ISO-8859-1;QUOTED-PRINTABLE:Stra=DFe=\r\n;Bau",
         "ORG;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=C3=96\\; AG;Bau"},
        {"ADR;WORK;ENCODING=QUOTED-PRINTABLE:;;Line 1=0D=0ALine 2;K\xF6ln;;50667;",
         "ADR;WORK;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:;;Line 1=0D=0ALine 2;Bonn;=\r\n;50667;"},
        {"END:VCARD",
         "FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:J=C3=BCrgen\\; M=C3=BCller\r\n"
         "END:VCARD"}}},
      {kNew,
       {{u"mobiletelephonenumber", u"22"},
        {u"lastname", u"Ray"},
        {u"businesstelephonenumber", u"x9"},
        {u"birthday", Date{36526}},
        {u"homefaxnumber", u"8"}},
       {{"uri:tel:2", "uri:tel:22"},
        {"FN:Ann Mary Lee", "FN:Ann Mary Ray"},
        {"TEL;VALUE=uri;TYPE=\"work,voice\":tel:+1-555;ext=7", "TEL;TYPE=\"work,voice\":x9"},
        {"BDAY:--0415", "BDAY:20000101"},
        {"END:VCARD", "N:Ray;Ann Mary;;;\r\nTEL;TYPE=home,fax:8\r\nEND:VCARD"}}}};
  for (const Case& each : cases) {
    const auto item = ReadContact(each.card);
    for (const auto& [property, value] : each.puts) item->Put(property, value);
    std::string expected = each.card;
    for (const auto& [from, to] : each.replaced) {
      ASSERT_NE(expected.find(from), std::string::npos) << from;
      expected.replace(expected.find(from), from.size(), to);
    }
    EXPECT_EQ(item->content(), expected);
  }
}

TEST(ContactDocument, NoAddressSlipsIntoAnotherSlot) {
  auto item = NewContact();
  const auto emails = [&] {
    item = ReadContact(item->content());
    return std::vector<String>{TextOf(*item, u"email1address"), TextOf(*item, u"email2address"),
                               TextOf(*item, u"email3address")};
  };
  item->Put(u"email2address", u"b");
  EXPECT_THAT(emails(), ElementsAre(u"", u"b", u""));
  item->Put(u"email1address", u"a");
  item->Put(u"email3address", u"c");
  EXPECT_THAT(emails(), ElementsAre(u"a", u"b", u"c"));
  item->Put(u"email1address", u"");
  EXPECT_THAT(emails(), ElementsAre(u"", u"b", u"c"));
  item->Put(u"email2address", u"");
  EXPECT_THAT(emails(), ElementsAre(u"", u"", u"c"));
  EXPECT_THAT(ReadContact(CardOf("EMAIL:1\r\nEMAIL:2\r\n"))->content(),
              testing::Not(HasSubstr("SLOT")));
}

TEST(ContactDocument, ACardAlwaysHasAName) {
  const auto item = NewContact();
  const auto name = [&] {
    const std::string& card = item->content();
    const size_t at = card.find("\r\nFN:") + 5;
    return card.substr(at, card.find('\r', at) - at);
  };
  EXPECT_EQ(name(), "Unnamed");
  item->Put(u"email1address", u"a@x");
  EXPECT_EQ(name(), "a@x");
  item->Put(u"companyname", u"Acme");
  EXPECT_EQ(name(), "Acme");
  EXPECT_EQ(TextOf(*item, u"fullname"), u"");
  item->Put(u"lastname", u"Lee");
  item->Put(u"companyname", u"");
  EXPECT_EQ(name(), "Lee");
  item->Put(u"subject", u"Ann Mary Ray");
  EXPECT_EQ(TextOf(*item, u"firstname"), u"Ann Mary");
  item->Put(u"fullname", u"");
  EXPECT_EQ(name(), "a@x");
  EXPECT_NE(NewContact()->Uid(), item->Uid());
}

TEST(ContactDocument, DistributionListsHaveTheirOwnProperties) {
  const auto list = ReadContact(
      CardOf("VERSION:3.0\r\nX-ADDRESSBOOKSERVER-KIND:group\r\nFN:Team\r\n"
             "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:1\r\nX-ADDRESSBOOKSERVER-MEMBER:urn:uuid:2\r\n"));
  EXPECT_EQ(list->item_class(), ItemClass::kDistributionList);
  EXPECT_EQ(ClassOfCard(list->content()), ItemClass::kDistributionList);
  EXPECT_EQ(list->Get(u"membercount").ToLong(), 2);
  list->Put(u"dlname", u"Crew");
  EXPECT_EQ(TextOf(*list, u"subject"), u"Crew");
  EXPECT_EQ(NumberOf([&] { list->Get(u"firstname"); }), 438);
  EXPECT_EQ(NumberOf([&] { list->Put(u"membercount", 1); }), 440);
  EXPECT_EQ(NumberOf([&] { NewContact()->Get(u"dlname"); }), 438);
}

TEST(ContactDocument, TakesDaysAsUsersTypeThem) {
  const auto item = NewContact();
  for (const char16_t* text : {u"15 Apr 1996", u"4/15/1996", u"1996-04-15", u"15.4.1996 10:30"}) {
    item->Put(u"birthday", kNoDate);
    item->Put(u"birthday", text);
    EXPECT_THAT(item->content(), HasSubstr("BDAY:1996-04-15\r\n")) << ToUtf8(text);
  }
  EXPECT_EQ(NumberOf([&] { item->Put(u"birthday", u"soon"); }), 13);
  EXPECT_EQ(NumberOf([&] { item->Put(u"birthday", u"31 Apr 1996"); }), 13);
}

TEST(ContactDocument, Utf16StaysUtf16) {
  const auto wide = [](std::string_view text) {
    std::string out = "\xFF\xFE";
    for (const char c : text) out += {c, '\0'};
    return out;
  };
  const auto item = ReadContact(wide(CardOf("VERSION:3.0\nFN:A\nN:A;;;;\n")));
  EXPECT_EQ(ClassOfCard(item->content()), ItemClass::kContact);
  item->Put(u"lastname", u"B");
  EXPECT_EQ(item->content(), wide(CardOf("VERSION:3.0\nFN:B\nN:B;;;;\n")));
}

TEST(ContactDocument, FilesOfCards) {
  EXPECT_EQ(ClassOfCard("BEGIN:VCALENDAR\nEND:VCALENDAR\n"), std::nullopt);
  EXPECT_EQ(ReadContact("no card"), nullptr);
  EXPECT_THAT(
      SplitCards("\xEF\xBB\xBF#\nBEGIN:VCARD\nFN:a\nBEGIN:VCARD\nFN:b\nEND:VCARD\n\nbegin:vcard"
                 "\nEND:VCARD"),
      ElementsAre("BEGIN:VCARD\nFN:a\n", "BEGIN:VCARD\nFN:b\nEND:VCARD\n",
                  "begin:vcard\nEND:VCARD"));
  const auto item = ReadContact(CardOf("VERSION:3.0\r\nN:A;;;;\r\nFN:A\r\n"));
  item->Put(u"email2address", u"b@x");
  item->Put(u"user1", u"u");
  item->PutUserField({u"KESTID", 1, u"7"});
  EXPECT_EQ(CardToSend(*item),
            CardOf("VERSION:3.0\r\nN:A;;;;\r\nFN:A\r\nEMAIL;TYPE=INTERNET:b@x\r\n"));
}

std::vector<std::string> Lines(const char* list) {
  std::vector<std::string> lines;
  for (const String& line : Split(FromUtf8(list), u"|")) lines.push_back(ToUtf8(line) + "\r\n");
  return lines;
}

// Random texts into random cards: they are read back, a second put changes nothing, and lines of
// other programs stay.
TEST(ContactDocument, WhatIsPutIsReadBackAndTheRestStays) {
  const std::vector<std::string> foreign = Lines(
      "X-FOO;A=\"b:c\":d\\,e\r\n f|# note|g1.IMPP:xmpp:a@b|GEO:1;2||PHOTO;ENCODING=B:AA\r\n AA");
  const std::vector<std::string> known = Lines(
      "TEL;TYPE=WORK:1|TEL;TYPE=WORK,PREF:2|TEL;CELL:3|TEL;TYPE=CELL:4|EMAIL:a|EMAIL;PREF=2:b|"
      "EMAIL;TYPE=pref:c|EMAIL:d|ORG:a;b;c|ADR:;;a;b|ADR;HOME:;x;y;;;;|N:a;b|FN:b a|NOTE:x|"
      "NOTE;ENCODING=QUOTED-PRINTABLE:y=0Az=\r\n=20|X-MS-SPOUSE:s|URL:http://a,b");
  const std::vector<String> texts = {
      u"", u"x", u"a;b,c\\n\r\n", u"ä ß€", String(200, u'é'), u" two  words ", u"=3D", u"+1 (2) 3"};
  const std::set<StringView> skipped = {u"Birthday",    u"Anniversary", u"Sensitivity",
                                        u"Categories",  u"FileAs",      u"BusinessAddress",
                                        u"HomeAddress", u"OtherAddress"};
  std::mt19937 random(7);
  const auto pick = [&](const auto& from) { return from[random() % from.size()]; };
  for (int round = 0; round < 3000; ++round) {
    std::string body = pick(Lines("VERSION:2.1|VERSION:3.0|VERSION:4.0"));
    std::vector<std::string> kept;
    for (int i = 0; i < 12; ++i) {
      const bool other = random() % 3 == 0;
      const std::string line = pick(other ? foreign : known);
      if (other) kept.push_back(line);
      body += line;
    }
    auto item = ReadContact(CardOf(body));
    for (int i = 0; i < 8; ++i) {
      const StringView name = pick(item->PropertyNames());
      if (skipped.contains(name)) continue;
      const String property = LowerCase(name);
      const String text = pick(texts);
      const std::string before = item->content();
      item->Put(property, text);
      const std::string once = item->content();
      item->Put(property, text);
      ASSERT_EQ(item->content(), once) << ToUtf8(property);
      item = ReadContact(once);
      ASSERT_EQ(TextOf(*item, property), text) << ToUtf8(property) << "\n" << body << "\n" << once;
      ASSERT_TRUE(once == before || once.find("\r\nFN") != std::string::npos) << once;
    }
    size_t at = 0;
    for (const std::string& line : kept) {
      at = item->content().find(line, at);
      ASSERT_NE(at, std::string::npos) << line << "\n" << body << "\n" << item->content();
      at += line.size();
    }
  }
}

}  // namespace
}  // namespace kestrelon::desktop
