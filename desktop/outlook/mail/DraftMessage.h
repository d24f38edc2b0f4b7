// A draft as a mail message: what other mail programs open as an unsent mail.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desktop/outlook/mail/Attachments.h"
#include "desktop/outlook/mail/Recipients.h"

namespace kestrelon::desktop {

// Texts are UTF-8. A line break in a header text becomes a blank.
struct DraftMessage {
  std::string id;  // for Message-ID: letters and digits
  std::string subject;
  const std::vector<std::shared_ptr<Recipient>>* recipients = nullptr;
  const std::vector<std::shared_ptr<Attachment>>* attachments = nullptr;
  std::string plain_body;
  std::string html_body;  // "" for a plain mail; else the plain body is derived from it
                          // and its pictures become parts of the message
};

// The message with CRLF line ends, 7-bit throughout but for addresses that have no such form: those
// stand in UTF-8, as internationalized mail has them.
std::string Compose(const DraftMessage& draft);

}  // namespace kestrelon::desktop
