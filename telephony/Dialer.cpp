#include "telephony/Dialer.h"

#include "Control/ErrorReporting.h"

namespace kestrelon {
namespace {

// The value of the first of the "key=value" items that has this key, whatever its case; "" when
// none has. Error 9 when that item has no value.
String GetParameterValue(const std::vector<String>& items, StringView key) {
  for (const String& item : items) {
    const size_t equals = item.find(u'=');
    if (!EqualIgnoringCase(StringView(item).substr(0, equals), key)) continue;
    if (equals == String::npos) throw AutomationError(kSubscriptOutOfRange);
    return item.substr(equals + 1);
  }
  return {};
}

// `step` is what was being done when an error leaves this.
void PlaceCall(ControlContext& context, const Value& sParameters, StringView& step) {
  step = u"splitting parameters";
  const std::vector<String> items = Split(sParameters.ToText(), u";");
  if (items.size() < 2) {
    ShowMessage(context, u"An insufficient number of parameters were passed!");
    return;
  }
  step = u"getting parameters";
  // NOTE: the number is looked up for its error alone; the dialer reads it, and whatever else it
  // understands, from the whole text.
  GetParameterValue(items, u"number");
  const String dialer_id = GetParameterValue(items, u"object");
  if (dialer_id.empty()) {
    ShowMessage(context, u"Object parameter was missing!");
    return;
  }
  step = u"creating dialer object";
  context.state.dialer = context.platform.CreateObject(dialer_id);
  step = u"making call";
  context.state.dialer.Call(u"MakeCall", sParameters);
}

}  // namespace

Value MakeCall(ControlContext& context, Value& sParameters) {
  StringView step;
  Attempt([&] { PlaceCall(context, sParameters, step); },
          [&](const AutomationError& error) {
            ShowMessage(context,
                        u"An error occured whilst " + String(step) + u": " + error.description(),
                        kOkOnly, u"Error");
          });
  return {};
}

Value HangupCall(ControlContext& context) {
  IgnoreFailures([&] { context.state.dialer.Call(u"HangupCall"); });
  return {};
}

String GetDialerVersion(ControlContext& context, Value& sObject) {
  String version;
  IgnoreFailures([&] {
    const Object dialer = context.platform.CreateObject(sObject.ToText());
    version = dialer.Call(u"GetVersion").ToText();
  });
  return version;
}

String GetTapiDrivers(ControlContext& context) {
  String drivers;
  IgnoreFailures([&] {
    const Object tapi = context.platform.CreateObject(u"TAPI.TAPI");
    tapi.Call(u"Initialize");
    const Object addresses = tapi.GetChild(u"Addresses");
    const int32_t count = addresses.Get(u"count").ToInteger();
    String result;
    for (int32_t i = 1; i <= count; ++i) {
      // NOTE: what stands before a name depends on the text so far, not on the line's place; a
      // first line without a name leaves no "~".
      const StringView separator = result.empty() ? u"" : u"~";
      result.append(separator);
      result += addresses.CallChild(u"item", i).Get(u"AddressName").ToText();
    }
    drivers = result;
  });
  return drivers;
}

}  // namespace kestrelon
