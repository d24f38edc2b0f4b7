// A page that may not call the control.

var desktop = make("KestrelonTest.Desktop");
var failure = {};
try {
  control.NewAppointment("1", "server", "crm");
} catch (e) {
  failure = e;
}
host.Equal("number", failure.number & 0xFFFF, 70);
host.Equal("text", failure.message, "Permission denied");
host.Equal("what is done", desktop.TakeLog(), "");

host.Done();
