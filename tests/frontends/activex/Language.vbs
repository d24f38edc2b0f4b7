' Arguments and failures as VBScript has them.

Sub Fails(what, number, text)
  host.Equal what & ": number", Err.Number, number
  host.Equal what & ": text", Err.Description, text
  Err.Clear
End Sub

mismatch = "Type mismatch"
wrong_count = "Wrong number of arguments or invalid property assignment"

On Error Resume Next
control.ServerName = "http://host"
Fails "a server name without a path", 13, mismatch
control.NoSuchMember
Fails "an unknown member", 438, "Object doesn't support this property or method"
control.FindFile
Fails "too few arguments", 450, wrong_count
control.CreateMessage "m", "many", "t"
Fails "a text for a number", 13, mismatch
control.CreateMessage "m", 70000, "t"
Fails "a number of more than 16 bits", 6, "Overflow"
control.FindFile Null
Fails "Null for a text", 13, mismatch
control.FindFile Array("a", "b")
Fails "an array for a text", 13, mismatch
On Error GoTo 0

' By reference: the setter and the members change the variables of the page.
name = "http://server/app/page.aspx"
control.ServerName = name
host.Equal "the server name's variable", name, "server"
parts = Array("http://other/app", 2)
control.ServerName = parts(0)
host.Equal "the array's element", parts(0), "other"
control.ServerName = (name & "1234567/8")
host.Equal "an expression leaves the variable", name, "server"

' Whatever converts to a text is one; what is skipped has its default.
host.Equal "an empty variable is an empty text", control.FindFile(Nobody), False
host.Equal "a number is a text", control.FindFile(12), False
host.Equal "a number is an integer", control.CreateMessage("m", "0", 1), -1
host.Equal "the type of an integer", TypeName(control.CreateMessage("m", 0, "t")), "Integer"
host.Equal "the type of a boolean", TypeName(control.FindFile("none")), "Boolean"
host.Equal "the type of a text", TypeName(control.GetVersion()), "String"

host.Done
