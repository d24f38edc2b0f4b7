// A user on the example page: behind its own script.

var elements = {
  control: control,
  template: { value: "C:\\Letter.dotx" },
  firstname: { value: "Zo\u00eb" },
  lastname: { value: "Holm" },
  companyname: { value: "Thistle & Crumb <Ltd>" }
};
var document = { getElementById: function (id) { return elements[id]; } };
var alerts = "";
function alert(text) {
  alerts += text;
}

var desktop = make("KestrelonTest.Desktop");
desktop.Answer("Word.Application.Selection.Find.Found", true, false, true, false, true, false);
desktop.TakeLog();
writeLetter();
host.Equal("alerts", alerts, "");
var log = desktop.TakeLog();
function done(line) {
  host.Equal(line, log.indexOf("Word.Application." + line + "\n") >= 0, true);
}
done("Documents.Add(\"C:\\\\Letter.dotx\")");
done("Selection.TypeText(\"Zo\u00eb\")");
done("Selection.TypeText(\"Thistle & Crumb <Ltd>\")");
done("Visible = True");

host.Done();
