// What a page does with Word and Outlook, and what they get to do.

var desktop = make("KestrelonTest.Desktop");

function written(log, line) {
  host.Equal(line, log.indexOf(line + "\n") >= 0, true);
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
var log = desktop.TakeLog();
var letter = "Word.Application.Documents.Add(\"C:\\\\Letter.dotx\")";
written(log, letter);
written(log, "Word.Application.Selection.Find.text = \"<firstname>\"");
written(log, "Word.Application.Selection.TypeText(\"Zo\u00eb\")");
written(log, "Word.Application.Selection.TypeText(\"Thistle & Crumb\")");
written(log, letter + ".SaveAs(\"C:\\\\Letter.doc\")");
written(log, "Word.Application.Visible = True");

// An appointment: a form that leads back to the account.
host.Equal("the appointment's result",
           control.NewAppointment("1234\u00acsubject=Call back\u00aclocation=Office", "server",
                                  "crm", true), "");
log = desktop.TakeLog();
var item = "Outlook.Application.CreateItem(1)";
written(log, item + ".Body = \"https://server/crm/Kestrelon.ASPX?Page=Account&ItemID=1234\"");
written(log, item + ".Subject = \"Call back\"");
written(log, item + ".UserProperties.Add(\"ACID\", 1, True) = \"1234\"");
written(log, item + ".Display()");

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
log = desktop.TakeLog();
written(log, contact + ".CompanyName = \"\"");
written(log, contact + ".LastName = \"Holm & Son\"");
written(log, contact + ".businessaddressstreet = \"1 High St\\r\\n\\r\\n\"");
written(log, contact + ".UserProperties.Add(\"KESTID\", 1).Value = \"42\"");
written(log, contact + ".save()");
host.Equal("puts of the contact", log.match(/\n[^\n]* = /g).length, 39);

host.Done();
