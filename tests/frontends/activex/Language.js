// Arguments and failures as JScript has them.

function fails(what, action, number, text) {
  var caught = null;
  try {
    action();
  } catch (e) {
    caught = e;
  }
  host.Equal(what + " fails", caught != null, true);
  if (caught == null) return;
  // Some engines pass on what is wrong with the arguments as the system numbers it, without words.
  var code = caught.number & 0xFFFF;
  if (caught.message == "") {
    code = {5: 13, 10: 6, 14: 450}[code];
  } else {
    host.Equal(what + ": text", caught.message, text);
  }
  host.Equal(what + ": number", code, number);
}

fails("a server name without a path", function () { control.ServerName = "http://host"; }, 13,
      "Type mismatch");
fails("an unknown member", function () { control.NoSuchMember(); }, 438,
      "Object doesn't support this property or method");
fails("too few arguments", function () { control.FindFile(); }, 450,
      "Wrong number of arguments or invalid property assignment");
fails("a text for a number", function () { control.CreateMessage("m", "many", "t"); }, 13,
      "Type mismatch");
fails("a number of more than 16 bits", function () { control.CreateMessage("m", 70000, "t"); }, 6,
      "Overflow");
fails("null for a text", function () { control.FindFile(null); }, 13, "Type mismatch");

// By value: the page's variable stays.
var name = "http://server/app/page.aspx";
control.ServerName = name;
host.Equal("the server name's variable", name, "http://server/app/page.aspx");

// Whatever converts to a text is one; members are found in any case.
host.Equal("undefined is an empty text", control.FindFile(undefined), false);
host.Equal("a number is a text", control.FindFile(12), false);
host.Equal("an array is a text", control.FindFile(["none", 2]), false);
host.Equal("a number is an integer", control.CreateMessage("m", "0", 1.0), -1);
host.Equal("a member in lower case", control.checkforword(), control.CheckForWord());

host.Done();
