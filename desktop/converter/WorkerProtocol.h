// What the converter and its worker program say to each other.
//
// They share a SOCK_SEQPACKET socket pair: one message is one packet, so there is nothing to frame
// and nothing to resynchronise. The worker holds its end as descriptor 3, apart from the standard
// streams, which the office suite writes to as it likes.
//
//   worker → converter   a reply, when the office suite is ready
//   converter → worker   a request: source, target, format and options, joined by NUL
//   worker → converter   a reply to it
//
// A reply is "+", or "-" and the reason (UTF-8); with it, the document is unloaded and both files
// are the converter's again. Closing the converter's end ends the worker.
#pragma once

#include <cstddef>

namespace kestrelon::desktop {

constexpr int kWorkerSocket = 3;
constexpr size_t kMaximumMessage = 64 * 1024;
constexpr char kReplyDone = '+';
constexpr char kReplyFailed = '-';

// The worker is started as: kestrelon-converter PROGRAM_FOLDER PRIVATE_FOLDER. It removes the
// private folder when it ends, so it accepts only one whose name starts like this.
constexpr char kPrivateFolderPrefix[] = "kestrelon-converter-";
// Below the private folder.
constexpr char kHomeFolder[] = "home";
constexpr char kJobFolder[] = "job";
constexpr char kProfileFolder[] = "profile";
constexpr char kScratchFolder[] = "tmp";

}  // namespace kestrelon::desktop
