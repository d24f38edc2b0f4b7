#include "Control/InterfaceTable.h"

#include <vector>

#include "Control/ErrorReporting.h"
#include "Control/LocaleAndEnvironment.h"
#include "Control/OfficeConnection.h"
#include "Control/ServerName.h"
#include "documents/ExcelQuote.h"
#include "documents/Letters.h"
#include "documents/Quotes.h"
#include "documents/ReportPdf.h"
#include "documents/TemplateLists.h"
#include "files/Opening.h"
#include "files/Uploading.h"
#include "outlook/Appointments.h"
#include "outlook/ContactFolder.h"
#include "outlook/ContactRecords.h"
#include "outlook/ContactRemoval.h"
#include "outlook/FolderLists.h"
#include "outlook/Import.h"
#include "outlook/Mails.h"
#include "outlook/Selection.h"
#include "outlook/Stamps.h"
#include "outlook/UnsyncedItems.h"
#include "telephony/Dialer.h"

namespace kestrelon {
namespace {

std::vector<Parameter> AllRequired(std::initializer_list<StringView> names) {
  std::vector<Parameter> parameters;
  for (const StringView name : names) parameters.push_back(Required(name));
  return parameters;
}

std::vector<Parameter> LetterParameters() {
  return {Required(u"xmlDoc"),
          Required(u"template"),
          Optional(u"strEmailAddress", u""),
          Optional(u"strMailMode", u"HTML"),
          Optional(u"strSavePath", u""),
          Optional(u"ReplaceinHeader", u"")};
}

std::vector<Parameter> LetterWithSubjectParameters() {
  std::vector<Parameter> parameters = LetterParameters();
  parameters.push_back(Optional(u"EmailSubject", u""));
  return parameters;
}

std::vector<Parameter> AddContactParameters() {
  std::vector<Parameter> parameters =
      AllRequired({u"id", u"LastName", u"contactType", u"straccount"});
  for (const StringView name :
       {u"Email", u"FirstName", u"title", u"Position", u"Phone", u"mobile"}) {
    parameters.push_back(Optional(name));
  }
  for (const StringView name :
       {u"businessaddressstreet", u"businessaddressstreet2", u"businessaddressstreet3",
        u"businessaddresscity", u"businessaddressstate", u"businessaddresspostalcode",
        u"businessaddresscountry"}) {
    parameters.push_back(Optional(name, u""));
  }
  return parameters;
}

std::vector<Parameter> OriginalMailParameters() {
  return AllRequired({u"strAddress", u"strFrom", u"strSent", u"strTo", u"strSubject", u"strBody"});
}

void AddItemMembers(std::vector<Member>& table) {
  table.push_back(Describe(u"NewAppointment", 0x60030001, &NewAppointment,
                           {Required(u"AccountInfo"), Required(u"ServerName"),
                            Required(u"VirtualDirectory"), Optional(u"SecureMode", false)}));
  table.push_back(Describe(u"AddAppointment", 0x60030002, &AddAppointment, AllRequired({u"acid"})));
  table.push_back(Describe(u"OpenTask", 0x60030003, &OpenTask, AllRequired({u"TaskID"})));
  table.push_back(
      Describe(u"OpenAppointment", 0x60030004, &OpenAppointment, AllRequired({u"AppointmentID"})));
  table.push_back(
      Describe(u"GenerateEmail", 0x60030006, &GenerateEmail,
               AllRequired({u"bodyhtml", u"address", u"Subject", u"mailType", u"addressType"})));
  table.push_back(Describe(u"GetOutlookSelection", 0x60030007, &GetOutlookSelection));
  table.push_back(Describe(u"GetOutlookSelectionString", 0x60030008, &GetOutlookSelectionString));
}

void AddLetterMembers(std::vector<Member>& table) {
  table.push_back(
      Describe(u"CreateSeminarLetterXML", 0x60030009, &CreateSeminarLetterXML, LetterParameters()));
  table.push_back(
      Describe(u"CreateLetterXML", 0x6003000A, &CreateLetterXML, LetterWithSubjectParameters()));
  table.push_back(Describe(u"CreateContactLetter", 0x6003000D, &CreateContactLetter,
                           AllRequired({u"oHTMLDoc", u"template"})));
  table.push_back(Describe(u"GetTemplateList", 0x6003000E, &GetTemplateList,
                           AllRequired({u"folderpath", u"listtype"})));
  table.push_back(Describe(u"FindFile", 0x6003000F, &FindFile, AllRequired({u"path"})));
  table.push_back(Describe(u"CreateHTMforPDF", 0x60030010, &CreateHTMforPDF,
                           AllRequired({u"theBody", u"theUniqueName", u"address", u"Subject",
                                        u"mailType", u"addressType"})));
  table.push_back(Describe(u"GetVersion", 0x60030016, &GetVersion));
}

void AddContactMembers(std::vector<Member>& table) {
  table.push_back(
      Describe(u"SetContactFolder", 0x60030017, &SetContactFolder, AllRequired({u"foldername"})));
  table.push_back(Describe(u"AddContact", 0x60030018, &AddContact, AddContactParameters()));
  table.push_back(
      Describe(u"AddContactAll", 0x60030019, &AddContactAll, AllRequired({u"oHTMLDoc"})));
  table.push_back(Describe(u"AddUpdateContactXML", 0x6003001A, &AddUpdateContactXML,
                           AllRequired({u"ContactRecordXML", u"overwriteKestrelonIDMatch",
                                        u"overwriteEmailNameMatch"})));
  table.push_back(Describe(u"CleanUpOutlook", 0x6003001D, &CleanUpOutlook));
  table.push_back(Describe(u"CreateExcelApp", 0x6003001E, &CreateExcelApp));
  table.push_back(Describe(u"OpenFile", 0x6003001F, &OpenFile,
                           {Required(u"filePath"), Optional(u"ManagedStorage", false)}));
}

void AddFolderMembers(std::vector<Member>& table) {
  table.push_back(Describe(u"GetContactFolderList", 0x60030020, &GetContactFolderList,
                           {Optional(u"strImport")}));
  table.push_back(Describe(u"GetTaskFolderList", 0x60030021, &GetTaskFolderList));
  table.push_back(Describe(u"GetFolderContactItems", 0x60030022, &GetFolderContactItems,
                           AllRequired({u"foldertosearch"})));
  table.push_back(Describe(u"GetFolderTaskItems", 0x60030023, &GetFolderTaskItems,
                           AllRequired({u"foldertosearch"})));
  table.push_back(Describe(u"ImportContact", 0x60030024, &ImportContact,
                           AllRequired({u"foldername", u"contactname"})));
  table.push_back(
      Describe(u"ImportTask", 0x60030025, &ImportTask, AllRequired({u"foldername", u"taskName"})));
  table.push_back(Describe(u"dateFormatOrder", 0x60030026, &dateFormatOrder));
  table.push_back(Describe(u"currencyFormat", 0x60030027, &currencyFormat));
  table.push_back(Describe(u"UploadFile", 0x60030029, &UploadFile,
                           AllRequired({u"filePath", u"ImportDirectory"})));
}

void AddMailAndQuoteMembers(std::vector<Member>& table) {
  table.push_back(
      Describe(u"CheckForFolder", 0x6003002B, &CheckForFolder, AllRequired({u"foldername"})));
  table.push_back(Describe(u"SendEmail", 0x6003002C, &SendEmail, AllRequired({u"strAddress"})));
  table.push_back(Describe(u"SendEmailWithOriginal", 0x6003002D, &SendEmailWithOriginal,
                           OriginalMailParameters()));
  table.push_back(Describe(u"SendEmailFull", 0x6003002E, &SendEmailFull, OriginalMailParameters()));
  table.push_back(Describe(u"ForwardEmailWithOriginal", 0x6003002F, &ForwardEmailWithOriginal,
                           OriginalMailParameters()));
  table.push_back(Describe(u"WordQuote", 0x60030030, &WordQuote,
                           AllRequired({u"xmlDoc", u"strTemplate", u"strSavePath",
                                        u"strMakeWordVisible", u"strReplaceinheader"})));
  table.push_back(
      Describe(u"WordQuoteHtml", 0x60030031, &WordQuoteHtml,
               AllRequired({u"xmlDoc", u"address", u"Subject", u"mailType", u"addressType",
                            u"strTemplate", u"strFormat", u"strSavePath", u"strReplaceinheader",
                            u"strMakeWordVisible", u"strQuoteFileName"})));
  table.push_back(Describe(u"CreateMessage", 0x60030035, &CreateMessage,
                           AllRequired({u"strMessage", u"intButtons", u"strTitle"})));
}

void AddRemainingMembers(std::vector<Member>& table) {
  table.push_back(Describe(u"RemoveContact", 0x60030036, &RemoveContact,
                           AllRequired({u"strContactID", u"strDelete"})));
  table.push_back(Describe(u"SetImportID", 0x60030037, &SetImportID,
                           AllRequired({u"strItemID", u"strEntryID", u"strItemType"})));
  table.push_back(Describe(u"CheckIfSynchronised", 0x60030038, &CheckIfSynchronised,
                           AllRequired({u"strEntryID", u"strItemType"})));
  table.push_back(
      Describe(u"ExcelQuote", 0x6003003B, &ExcelQuote, AllRequired({u"oHTMLDoc", u"strColumns"})));
  table.push_back(Describe(u"CreateContactAsvCard", 0x6003003C, &CreateContactAsvCard,
                           AllRequired({u"oHTMLDoc"})));
  table.push_back(Describe(u"CheckForOutlook", 0x6003003D, &CheckForOutlook));
  table.push_back(Describe(u"CheckForWord", 0x6003003E, &CheckForWord));
  table.push_back(Describe(u"MakeCall", 0x60030045, &MakeCall, AllRequired({u"sParameters"})));
  table.push_back(Describe(u"HangupCall", 0x60030046, &HangupCall));
  table.push_back(
      Describe(u"GetDialerVersion", 0x60030047, &GetDialerVersion, AllRequired({u"sObject"})));
  table.push_back(Describe(u"GetTapiDrivers", 0x60030052, &GetTapiDrivers));
  table.push_back(Describe(u"GetUnsyncedAppts", 0x6003005A, &GetUnsyncedAppts));
  table.push_back(Describe(u"GetUnsyncedTasks", 0x6003005B, &GetUnsyncedTasks));
  table.push_back(Describe(u"GetUnsyncedContacts", 0x6003005C, &GetUnsyncedContacts,
                           AllRequired({u"foldertosearch"})));
  table.push_back(
      Describe(u"SetItemAsKestrelon", 0x6003005E, &SetItemAsKestrelon,
               AllRequired({u"ItemType", u"StoreID", u"OutlookID", u"AccountID", u"ItemID"})));
}

std::vector<Member> BuildTable() {
  std::vector<Member> table;
  table.push_back(Describe(u"ServerName", 0x68030000, &ServerName, AllRequired({u"value"}),
                           MemberKind::kPropertyPut));
  AddItemMembers(table);
  AddLetterMembers(table);
  AddContactMembers(table);
  AddFolderMembers(table);
  AddMailAndQuoteMembers(table);
  AddRemainingMembers(table);
  return table;
}

const std::vector<Member>& Table() {
  static const std::vector<Member> table = BuildTable();
  return table;
}

}  // namespace

std::span<const Member> InterfaceTable() { return Table(); }

const Member* FindMember(StringView name) {
  for (const Member& member : Table()) {
    if (EqualIgnoringCase(member.name, name)) return &member;
  }
  return nullptr;
}

std::optional<size_t> FindParameter(const Member& member, StringView name) {
  for (size_t i = 0; i < member.parameters.size(); ++i) {
    if (EqualIgnoringCase(member.parameters[i].name, name)) return i;
  }
  return std::nullopt;
}

}  // namespace kestrelon
