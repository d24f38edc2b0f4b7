// What a page does with Word and Outlook, and what they get to do.

var desktop = make("KestrelonTest.Desktop");

function lines() {
  return Array.prototype.join.call(arguments, "\n") + "\n";
}

function repeat(text, times) {
  return new Array(times + 1).join(text);
}

// A letter: the record's values go into the template, and the letter is saved and shown.
var record = make("Msxml2.DOMDocument");
record.async = false;
host.Equal("the record is well-formed", record.loadXML(
  "<Data><field name='n' templatetag='firstname'/><field name='c' templatetag='company'/>" +
  "<Data><r fieldname='n' value='Zo\u00eb'/><r fieldname='c' value='Thistle &amp; Crumb'/></Data>" +
  "</Data>"), true);
desktop.Answer("Word.Application.Selection.Find.Found", true, false, true, false);
desktop.TakeLog();
control.CreateLetterXML(record, "C:\\Letter.dotx", "", "HTML", "C:\\Letter.doc");
var letter = "Word.Application.Documents.Add(\"C:\\\\Letter.dotx\")";
var find = "Word.Application.Selection.Find.";
function search(tag) {
  return lines(find + "MatchCase = False", find + "forward = True", find + "wrap = 1",
               find + "text = \"" + tag + "\"", find + "Execute()");
}
function replacement(tag, value) {
  return lines(letter + ".Select()") + search(tag) +
         lines("Word.Application.Selection.TypeText(\"" + value + "\")", letter + ".Select()") +
         search(tag);
}
host.Equal("the letter", desktop.TakeLog(),
  lines(letter, letter + ".Select()") + replacement("<firstname>", "Zo\u00eb") +
  replacement("<company>", "Thistle & Crumb") +
  lines(letter + ".Range(Start:=0, End:=0)", letter + ".Range(Start:=0, End:=0).Select()",
        letter + ".SaveAs(\"C:\\\\Letter.doc\")", "Word.Application.Visible = True"));

// An appointment: a form that leads back to the account.
host.Equal("the appointment's result",
           control.NewAppointment("1234\u00acsubject=Call back\u00aclocation=Office", "server",
                                  "crm", true), "");
var item = "Outlook.Application.CreateItem(1)";
function property(name, value) {
  return item + ".UserProperties.Add(\"" + name + "\", 1, True)";
}
host.Equal("the appointment", desktop.TakeLog(), lines(
  item,
  item + ".Body = \"https://server/crm/Kestrelon.ASPX?Page=Account&ItemID=1234\"",
  item + ".Subject = \"Call back\"",
  item + ".Location = \"Office\"",
  property("ACID"), property("Kestrelon"), property("guid"),
  property("ACID") + " = \"1234\"",
  property("Kestrelon") + " = \"true\"",
  item + ".Display()"));

// An export of contacts: the folder of that name is bound, and the record becomes a new contact.
var contacts = "Outlook.Application.GetNamespace(\"MAPI\").GetDefaultFolder(10)";
desktop.Answer(contacts + ".Folders.count", 1);
desktop.Answer(contacts + ".Folders.item(1).Name", "Customers");
var folder = contacts + ".Folders.item(1)";
desktop.Answer(folder + ".Items.count", 0);
desktop.Answer(folder + ".Items.Count", 0);
control.SetContactFolder("Customers");
desktop.TakeLog();
host.Equal("the export's result", control.AddUpdateContactXML(
  "<record id='42'><field name='FIRSTNAME' value='Zo\u00eb'/>" +
  "<field name='LASTNAME' value='Holm &amp; Son'/>" +
  "<field name='BUSINESSADDRESSSTREET' value='1 High St'/></record>", false, true), true);
var contact = folder + ".Items.Add()";
var log = desktop.TakeLog();
function written(line) {
  host.Equal(line, log.indexOf(contact + line + "\n") >= 0, true);
}
written(".CompanyName = \"\"");
written(".FirstName = \"Zo\u00eb\"");
written(".LastName = \"Holm & Son\"");
written(".businessaddressstreet = \"1 High St\\r\\n\\r\\n\"");
written(".User2 = \"Perm\"");
written(".User3 = \"42\"");
written(".UserProperties.Add(\"KESTID\", 1).Value = \"42\"");
written(".save()");
host.Equal("puts of the contact", log.match(/\n[^\n]* = /g).length, 39);

host.Done();
