#include "outlook/MapiErrors.h"

#include <array>

#include "automation/Value.h"

namespace kestrelon {
namespace {

struct MapiError {
  uint32_t number;
  StringView text;
};

// The first row that equals the error's number counts.
constexpr std::array<MapiError, 22> kMapiErrors = {{
    {0x80040124,
     u"The account being used to connect to the mail server has been disabled. Contact your "
     u"Exchange Server Administrator"},
    {0x8004010B,
     u"Another operation is in progress; it should be allowed to complete, or it should be "
     u"stopped, before this operation should be initiated"},
    {0x80004005,
     u"It is probable that the sending limit property has been set on the mailbox and there are "
     u"enough messages in the mailbox to meet the limit criteria."},
    {0x80040116, u"There was a problem writing to or reading from disk."},
    {0x8004011D, u"You may have insufficient permissions to the mailbox that you are logged onto."},
    {0x80040123,
     u"The request cannot be processed because of access permissions on the mail server."},
    {0x80040111, u"The workstation account being used to connect to the mail server is not valid"},
    // NOTE: never chosen, as the row before it has the same number. It stands here for the support
    // desk, which looks texts up by this list.
    {0x80040111,
     u"This item may not belong to you. You are trying to access a mailbox that does not exist, "
     u"you have insufficient rights on the Exchange mailbox or you are using invalid logon "
     u"information."},
    {0x80040115, u"There was a network failure while trying to complete the current operation"},
    {0x80040102,
     u"One or more elements of the Windows Messaging Subsystem installed on the computer are out "
     u"of date"},
    {0x8004010D, u"Hard disk may be out of space"},
    {0x8007000E, u"Not enough memory was available to complete the operation"},
    {0x8004010E, u"Not enough system resources were available to complete the operation"},
    {0x8004010F,
     u"The appointment cannot be found, it may have been deleted or it may not belong to you"},
    {0x80040502,
     u"The transport provider cannot handle this message. The MAPI spooler should try to find "
     u"another transport provider for it. Please check your Outlook delivery methods"},
    {0x80040120, u"The Mail server has responded that your logon password must be changed"},
    {0x80040121, u"The Mail server has responded that your password has expired"},
    {0x80040114,
     u"An asynchronous operation is in progress and cannot be stopped or it has already completed"},
    {0x8004011C, u"Your MAPI Logon has not been configured properly"},
    {0x80040106,
     u"CDO 1.21 does not ship with Outlook 97 or the Exchange clients. It must be obtained and "
     u"installed separately."},
    {0x80040110,
     u"The version of OLE installed on the workstation is not compatible with this version of "
     u"MAPI."},
    {0x80040107, u"An invalid entry id was supplied for this appointment."},
}};

}  // namespace

String DescribeMapiError(const AutomationError& error) {
  for (const MapiError& row : kMapiErrors) {
    if (static_cast<int32_t>(row.number) == error.number()) return String(row.text);
  }
  return u"An unknown error (" + Value(error.number()).ToText() +
         u") occurred attempting to open this appointment. " + error.description();
}

}  // namespace kestrelon
