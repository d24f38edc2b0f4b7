' What a page does with Word and Outlook, and what they get to do.

Set desktop = make("KestrelonTest.Desktop")

Sub Written(calls, line)
  host.Equal line, InStr(calls, line & vbLf) > 0, True
End Sub

' A letter of the page's own variables.
Set record = make("Msxml2.DOMDocument")
record.async = False
record.loadXML "<Data><field name='n' templatetag='firstname'/>" & _
  "<Data><r fieldname='n' value='Ann'/></Data></Data>"
template = "C:\Letter.dotx"
path = "C:\Letter.doc"
desktop.Answer "Word.Application.Selection.Find.Found", True, False
desktop.TakeLog
control.CreateLetterXML record, template, , , path
calls = desktop.TakeLog()
letter = "Word.Application.Documents.Add(""C:\\Letter.dotx"")"
Written calls, letter
Written calls, "Word.Application.Selection.Find.text = ""<firstname>"""
Written calls, "Word.Application.Selection.TypeText(""Ann"")"
Written calls, letter & ".SaveAs(""C:\\Letter.doc"")"
Written calls, "Word.Application.Visible = True"
host.Equal "the record is still the page's", record.documentElement.nodeName, "Data"

' An appointment.
host.Equal "the appointment's result", _
  control.NewAppointment("guid=7" & Chr(172) & "77", "server", "crm"), ""
calls = desktop.TakeLog()
item = "Outlook.Application.CreateItem(1)"
Written calls, item & ".Body = ""http://server/crm/Kestrelon.ASPX?Page=Account&ItemID=77"""
Written calls, item & ".UserProperties.Add(""guid"", 1, True) = ""7"""
Written calls, item & ".Display()"

' A temporary contact; the arguments come back trimmed.
contacts = "Outlook.Application.GetNamespace(""MAPI"").GetDefaultFolder(10)"
desktop.Answer contacts & ".Items.count", 0
control.SetContactFolder "Contacts"
first = "  Ann "
last = " - "
control.AddContact "1", last, "Temporary", "-", , first
host.Equal "first name written back", first, "Ann"
host.Equal "last name written back", last, ""
calls = desktop.TakeLog()
Written calls, contacts & ".Items.Add().FirstName = ""Ann"""
Written calls, contacts & ".Items.Add().CompanyName = ""-"""
Written calls, contacts & ".Items.Add().User2 = ""Temp"""
Written calls, contacts & ".Items.Add().save()"

' A list of contacts, which the system's own parser sorts.
Function Person(name, id)
  desktop.Answer name & ".Class", 40
  desktop.Answer name & ".LastName", name
  desktop.Answer name & ".FullName", name
  desktop.Answer name & ".EntryID", id
  Set Person = desktop.Named(name)
End Function
desktop.Answer contacts & ".Items.Each", Array(Person("Zoe", "1"), Person("Ann", "2"))
host.Equal "the list of contacts", control.GetFolderContactItems(""), "Ann#~2#~Zoe#~1#~"

host.Done
