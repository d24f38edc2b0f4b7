' A page that may not call the control.

Set desktop = make("KestrelonTest.Desktop")
On Error Resume Next
control.NewAppointment "1", "server", "crm"
host.Equal "number", Err.Number, 70
host.Equal "text", Err.Description, "Permission denied"
On Error GoTo 0
host.Equal "what is done", desktop.TakeLog(), ""

host.Done
