#include "desktop/http/Transfer.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string_view>

#include "desktop/http/Address.h"

namespace kestrelon::desktop {
namespace {

constexpr long kMostRedirects = 10;
constexpr long kConnectSeconds = 30;
// A connection is given up that was slower than this for so long.
constexpr long kSlowestBytesPerSecond = 64;
constexpr long kSlowSeconds = 60;

struct EndTransfer {
  void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
};
struct FreeHeaders {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, FreeHeaders>;

struct Failure {
  CURLcode code;
  TransferErrorNumber number;
  const char16_t* what;  // follows "The address '…' "
  const char16_t* what_to_do;
};
constexpr Failure kFailures[] = {
    {CURLE_URL_MALFORMAT, kBadAddress, u"is none of the web", u"Write it as http://server/path"},
    {CURLE_UNSUPPORTED_PROTOCOL, kUnknownScheme, u"leads to one that is not of the web",
     u"Ask for an address of http or https"},
    {CURLE_COULDNT_RESOLVE_HOST, kServerNotFound, u"names a server that was not found",
     u"Check the server's name and the connection to the network"},
    {CURLE_COULDNT_RESOLVE_PROXY, kServerNotFound, u"goes through a proxy that was not found",
     u"Check the proxy that the environment names"},
    {CURLE_COULDNT_CONNECT, kCannotConnect, u"has a server that cannot be reached",
     u"Check the address, and that the server runs"},
    {CURLE_OPERATION_TIMEDOUT, kTransferTimeout, u"has a server that did not answer in time",
     u"Try again later, or check that the server works"},
    {CURLE_TOO_MANY_REDIRECTS, kTooManyRedirects, u"was redirected more than ten times",
     u"Check the redirects of the server"},
    {CURLE_PEER_FAILED_VERIFICATION, kBadCertificate,
     u"has a server whose certificate is not valid",
     u"Check the address, and the certificates that this machine trusts"},
    {CURLE_GOT_NOTHING, kTransferBroken, u"has a server that closed the connection unanswered",
     u"Try again, or check that the server works"},
    {CURLE_PARTIAL_FILE, kTransferBroken, u"has a server that closed the connection too early",
     u"Try again, or check that the server works"},
};
constexpr Failure kOtherFailure = {CURLE_OK, kTransferBroken, u"could not be used",
                                   u"Try again, or check that the server works"};
constexpr Failure kTooLong = {CURLE_WRITE_ERROR, kTransferBroken,
                              u"gives an answer that is too long", u"Ask for less at once"};

AutomationError MakeError(const Failure& failure, StringView url, std::string_view reason) {
  String text = u"The address '" + String(url) + u"' " + failure.what;
  if (!reason.empty()) text += u" (" + FromUtf8(reason) + u")";
  return AutomationError(failure.number, text + u". " + failure.what_to_do);
}

const char* SchemesFor(std::string_view method) {
  return method == "GET" ? "http,https,ftp" : "http,https";
}

// One transfer while it goes on.
class Exchange {
 public:
  explicit Exchange(const TransferRequest& request)
      : request_(request), is_ftp_(SchemeOf(request.url) == "ftp") {
    static const CURLcode is_ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    curl_.reset(curl_easy_init());
    if (is_ready != CURLE_OK || curl_ == nullptr) throw AutomationError(kOutOfMemory);
  }

  TransferAnswer Perform() {
    DescribeAddress();
    DescribeMethod();
    const HeaderList headers = DescribeHeaders();
    Set(CURLOPT_HEADERFUNCTION, &Exchange::ReceiveHeader);
    Set(CURLOPT_HEADERDATA, this);
    Set(CURLOPT_WRITEFUNCTION, &Exchange::ReceiveBody);
    Set(CURLOPT_WRITEDATA, this);
    Set(CURLOPT_ERRORBUFFER, reason_.data());
    const CURLcode code = curl_easy_perform(curl_.get());
    const bool is_cut =
        request_.completeness == Completeness::kAsFarAsCame && !answer_.body.empty();
    if (code != CURLE_OK && !is_cut) throw ErrorOf(code);
    long status = 0;
    curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status);
    answer_.status = static_cast<int32_t>(status);
    return std::move(answer_);
  }

 private:
  template <typename T>
  void Set(CURLoption option, T value) {
    const CURLcode code = curl_easy_setopt(curl_.get(), option, value);
    if (code != CURLE_OK) throw ErrorOf(code);
  }

  void DescribeAddress() {
    Set(CURLOPT_URL, AddressOnTheWire(request_.url).c_str());
    Set(CURLOPT_PROTOCOLS_STR, SchemesFor(request_.method));
    Set(CURLOPT_REDIR_PROTOCOLS_STR, SchemesFor(request_.method));
    Set(CURLOPT_USERAGENT, "Kestrelon");  // unless there is a header that says so
    Set(CURLOPT_FOLLOWLOCATION, 1L);
    Set(CURLOPT_MAXREDIRS, kMostRedirects);
    // The version that has status texts.
    Set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    Set(CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    Set(CURLOPT_LOW_SPEED_LIMIT, kSlowestBytesPerSecond);
    Set(CURLOPT_LOW_SPEED_TIME, kSlowSeconds);
    if (request_.user.empty()) return;
    Set(CURLOPT_USERNAME, request_.user.c_str());
    Set(CURLOPT_PASSWORD, request_.password.c_str());
    Set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_ANY));
  }

  void DescribeMethod() {
    const std::string& method = request_.method;
    if (method == "GET") return;
    if (method == "HEAD") return Set(CURLOPT_NOBODY, 1L);
    if (method == "POST") {
      static const std::string kNothing;
      const std::string& body = request_.body ? *request_.body : kNothing;
      Set(CURLOPT_POST, 1L);
      Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
      return Set(CURLOPT_POSTFIELDS, body.c_str());
    }
    if (method != "PUT") Set(CURLOPT_CUSTOMREQUEST, method.c_str());
    if (method == "PUT" || request_.body) {
      Set(CURLOPT_UPLOAD, 1L);
      Set(CURLOPT_INFILESIZE_LARGE,
          static_cast<curl_off_t>(request_.body ? request_.body->size() : 0));
      Set(CURLOPT_READFUNCTION, &Exchange::SendBody);
      Set(CURLOPT_READDATA, this);
      Set(CURLOPT_SEEKFUNCTION, &Exchange::Rewind);
      Set(CURLOPT_SEEKDATA, this);
    }
  }

  HeaderList DescribeHeaders() {
    HeaderList list;
    const auto add = [&list](const std::string& line) {
      curl_slist* longer = curl_slist_append(list.get(), line.c_str());
      if (longer == nullptr) throw AutomationError(kOutOfMemory);
      static_cast<void>(list.release());
      list.reset(longer);
    };
    // Neither waiting for leave to send a long body, nor a type that nobody gave.
    add("Expect:");
    add("Content-Type:");
    // "name;" is how an empty header is written here; "name:" takes one away.
    for (const auto& [name, value] : request_.headers) {
      add(value.empty() ? name + ";" : name + ": " + value);
    }
    Set(CURLOPT_HTTPHEADER, list.get());
    return list;
  }

  AutomationError ErrorOf(CURLcode code) const {
    if (is_too_long_) return MakeError(kTooLong, request_.url, "");
    const auto* known = std::find_if(std::begin(kFailures), std::end(kFailures),
                                     [code](const Failure& f) { return f.code == code; });
    const char* reason = reason_[0] != '\0' ? reason_.data() : curl_easy_strerror(code);
    return MakeError(known == std::end(kFailures) ? kOtherFailure : *known, request_.url, reason);
  }

  static size_t ReceiveHeader(char* data, size_t, size_t size, void* self) {
    std::string_view line(data, size);
    line = line.substr(0, line.find_last_not_of("\r\n") + 1);
    static_cast<Exchange*>(self)->ReadHeader(line);
    return size;
  }
  void ReadHeader(std::string_view line) {
    const auto rest = [line](size_t at) { return line.substr(std::min(at, line.size())); };
    if (is_ftp_) {
      answer_.status_text = rest(4);  // "226 Transfer complete"
    } else if (line.starts_with("HTTP/")) {
      // "HTTP/1.1 200 OK"; what came before was a redirect's or an interim answer.
      answer_ = {};
      answer_.status_text = rest(std::min(line.find(' '), line.size()) + 5);
    } else if (const size_t colon = line.find(':'); colon != std::string_view::npos) {
      const std::string_view value =
          rest(std::min(line.find_first_not_of(" \t", colon + 1), line.size()));
      answer_.headers.emplace_back(line.substr(0, colon), value);
    }
  }

  static size_t ReceiveBody(char* data, size_t, size_t size, void* self) {
    auto& exchange = *static_cast<Exchange*>(self);
    std::string& body = exchange.answer_.body;
    const size_t room = kLongestAnswer - body.size();
    exchange.is_too_long_ = size > room;
    body.append(data, std::min(size, room));
    return exchange.is_too_long_ ? 0 : size;
  }

  static size_t SendBody(char* buffer, size_t, size_t size, void* self) {
    auto& exchange = *static_cast<Exchange*>(self);
    if (!exchange.request_.body) return 0;
    const size_t count = exchange.request_.body->copy(buffer, size, exchange.sent_);
    exchange.sent_ += count;
    return count;
  }
  // The body has to be sent again to where a redirect leads, or with the user's name.
  static int Rewind(void* self, curl_off_t offset, int origin) {
    if (origin != SEEK_SET || offset < 0) return CURL_SEEKFUNC_FAIL;
    static_cast<Exchange*>(self)->sent_ = static_cast<size_t>(offset);
    return CURL_SEEKFUNC_OK;
  }

  const TransferRequest& request_;
  const bool is_ftp_;
  std::unique_ptr<CURL, EndTransfer> curl_;
  TransferAnswer answer_;
  std::array<char, CURL_ERROR_SIZE> reason_{};
  size_t sent_ = 0;
  bool is_too_long_ = false;
};

}  // namespace

void RequireAddress(const std::string& method, StringView url) {
  const std::string scheme = SchemeOf(url);
  if (scheme.empty() || url.find(u'\0') != StringView::npos) {
    throw MakeError(kFailures[0], url, "");
  }
  const bool is_carried =
      scheme == "http" || scheme == "https" || (scheme == "ftp" && method == "GET");
  if (is_carried) return;
  throw AutomationError(kUnknownScheme,
                        u"The address '" + String(url) + u"' cannot be used here: its scheme is " +
                            FromUtf8(scheme) + u". Use http or https, or ftp to read a file");
}

TransferAnswer Transfer(const TransferRequest& request) {
  RequireAddress(request.method, request.url);
  return Exchange(request).Perform();
}

}  // namespace kestrelon::desktop
