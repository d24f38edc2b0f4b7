// One request to a web server and its answer, over libcurl: http, https and, to read, ftp.
//
// Redirects are followed within these, ten at most; proxies are those of the environment. Bytes
// that an address cannot carry (blanks, characters outside ASCII) are percent-encoded on the wire.
// A server may take 30 seconds to accept the connection, and fall silent for 60 seconds. Failures
// are AutomationErrors that say what failed, why, and what to do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "automation/AutomationError.h"
#include "automation/Text.h"

namespace kestrelon::desktop {

// The numbers of failed transfers.
enum TransferErrorNumber : int32_t {
  kBadAddress = static_cast<int32_t>(0x800C0002),
  kCannotConnect = static_cast<int32_t>(0x800C0004),  // refused
  kServerNotFound = static_cast<int32_t>(0x800C0005),
  kTransferBroken = static_cast<int32_t>(0x800C0008),  // closed early, too long, anything else
  kTransferTimeout = static_cast<int32_t>(0x800C000B),
  kUnknownScheme = static_cast<int32_t>(0x800C000D),
  kTooManyRedirects = static_cast<int32_t>(0x800C0014),
  kBadCertificate = static_cast<int32_t>(0x800C0019),
};

// Bytes of an answer's body.
inline constexpr size_t kLongestAnswer = size_t{64} << 20;

// What becomes of an answer that breaks off or is over the limit.
enum class Completeness {
  kRequired,    // an error
  kAsFarAsCame  // cut, with what came; an error when nothing did
};

struct TransferRequest {
  std::string method = "GET";  // a token; upper case for those that HTTP defines
  String url;                  // as the caller wrote it
  std::string user, password;  // for a server that asks for them; none when `user` is ""
  std::vector<std::pair<std::string, std::string>> headers;
  std::optional<std::string> body;  // not sent with GET and HEAD
  Completeness completeness = Completeness::kRequired;
};

struct TransferAnswer {
  int32_t status = 0;       // of HTTP, any; of ftp, its last reply
  std::string status_text;  // "OK"
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
};

// The error that such a request for `url` would fail with whatever the network does.
void RequireAddress(const std::string& method, StringView url);

TransferAnswer Transfer(const TransferRequest& request);

}  // namespace kestrelon::desktop
