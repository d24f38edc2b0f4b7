#include "Control/OfficeConnection.h"

#include "Control/ErrorReporting.h"

namespace kestrelon {
namespace {

String TrueOrFalse(bool value) { return value ? u"True" : u"False"; }

Object StartApplication(ControlContext& context, StringView prog_id, const String& name) {
  Object application;
  Attempt([&] { application = context.platform.CreateObject(prog_id); },
          [&](const AutomationError&) {
            ShowMessage(context,
                        u"Unable to start " + name + u" - check that it is installed correctly",
                        kExclamation, u"Kestrelon");
          });
  return application;
}

}  // namespace

void CleanUpOutlook(ControlContext& context) {
  ObjectState& state = context.state;
  for (Object* reference :
       {&state.user_properties, &state.current_task, &state.first_spare_item,
        &state.second_spare_item, &state.current_appointment, &state.current_mail,
        &state.current_contact, &state.current_folder, &state.bound_contact_folder,
        &state.second_contact, &state.mapi_namespace, &state.outlook_application}) {
    reference->Release();
  }
}

String CheckForOutlook(ControlContext& context) {
  Object& application = context.state.outlook_application;
  const auto error = IgnoreFailures(
      [&] { application = context.platform.GetRunningObject(u"Outlook.Application"); });
  application.Release();
  return TrueOrFalse(!error);
}

String CheckForWord(ControlContext& context) {
  Object word;
  // NOTE: Word is created, not attached to, and not asked to quit: a page learns whether a letter
  // would work, and a running Word of the user's is not disturbed by the probe.
  const auto error =
      IgnoreFailures([&] { word = context.platform.CreateObject(u"Word.Application"); });
  return TrueOrFalse(!error);
}

Object CreateExcelApp(ControlContext& context) {
  Object excel;
  IgnoreFailures([&] {
    excel = context.platform.CreateObject(u"Excel.Application");
    context.state.excel_application = excel;
  });
  return excel;
}

Object StartWord(ControlContext& context) {
  return StartApplication(context, u"Word.Application", u"Microsoft Word");
}

Object StartExcel(ControlContext& context) {
  return StartApplication(context, u"Excel.Application", u"Microsoft Excel");
}

String GetOutlookErrorResult(std::optional<AutomationError>& pending,
                             [[maybe_unused]] const String& step_text, int16_t method_code) {
  if (pending && pending->number() == kCannotCreateObject) return u"NoOutlook";
  pending.reset();
  return Value(static_cast<int32_t>(method_code)).ToText();
}

}  // namespace kestrelon
