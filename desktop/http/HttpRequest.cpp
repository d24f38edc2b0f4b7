#include "desktop/http/HttpRequest.h"

#include <algorithm>

#include "desktop/http/BodyText.h"
#include "desktop/http/Transfer.h"
#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {
namespace {

constexpr auto kNotYetAvailable = static_cast<int32_t>(0x8000000A);
constexpr auto kUnspecifiedError = static_cast<int32_t>(0x80004005);

enum ReadyState : int32_t { kUninitialized = 0, kOpened = 1, kLoaded = 4 };

// What HTTP takes for the name of a method or a header.
bool IsToken(StringView text) {
  constexpr StringView kMarks = u"!#$%&'*+-.^_`|~";
  return !text.empty() && std::all_of(text.begin(), text.end(), [&](char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
           kMarks.find(c) != StringView::npos;
  });
}

[[noreturn]] void Refuse(const String& description) {
  throw AutomationError(kInvalidProcedureCall, description);
}

// "" for an argument that says nothing.
String TextOf(const Value& value) {
  return value.IsOmitted() || value.IsEmpty() || value.IsNull() ? String() : value.ToText();
}

class HttpRequest final : public ServerObject<HttpRequest> {
 public:
  static const MemberTable<HttpRequest>& Members() {
    using Self = HttpRequest;
    static const MemberTable<Self> table =
        MemberTable<Self>(u"XMLHTTP")
            .Method(u"open", &Self::Open,
                    {u"bstrMethod", u"bstrUrl", u"varAsync", u"bstrUser", u"bstrPassword"})
            .Method(u"setRequestHeader", &Self::SetRequestHeader, {u"bstrHeader", u"bstrValue"})
            .Method(u"send", &Self::Send, {u"varBody"})
            .Method(u"abort", &Self::Abort)
            .Method(u"getResponseHeader", &Self::GetResponseHeader, {u"bstrHeader"})
            .Method(u"getAllResponseHeaders", &Self::GetAllResponseHeaders)
            .Property(u"readyState", &Self::GetReadyState)
            .Property(u"status", &Self::GetStatus)
            .Property(u"statusText", &Self::GetStatusText)
            .Property(u"responseText", &Self::GetResponseText);
    return table;
  }

 private:
  void RequireOpened() const {
    if (state_ == kOpened) return;
    throw AutomationError(kUnspecifiedError,
                          u"The request is not open. Call open before each request");
  }
  const TransferAnswer& RequireAnswer() const {
    if (state_ == kLoaded) return answer_;
    throw AutomationError(kNotYetAvailable,
                          u"The request has no answer yet. Call open and send before reading it");
  }

  Value Open(const MethodArguments& arguments) {
    const String method = UpperCase(arguments.Require(0).ToText());
    const bool is_refused = method == u"CONNECT" || method == u"TRACE" || method == u"TRACK";
    if (!IsToken(method) || is_refused) {
      Refuse(u"\"" + method + u"\" is no method of a request. Use one such as GET, POST or PUT");
    }
    TransferRequest request;
    request.method = ToUtf8(method);
    request.url = arguments.Require(1).ToText();
    request.user = ToUtf8(TextOf(arguments[3]));
    request.password = ToUtf8(TextOf(arguments[4]));
    RequireAddress(request.method, request.url);
    request_ = std::move(request);
    state_ = kOpened;
    return {};
  }

  // A header that was set before gets the new value.
  Value SetRequestHeader(const MethodArguments& arguments) {
    RequireOpened();
    String name = Trim(arguments.Require(0).ToText());
    // Many a page writes the colon too.
    if (name.ends_with(u':')) name.pop_back();
    const String value = Trim(arguments.Require(1).ToText());
    if (!IsToken(name)) Refuse(u"\"" + name + u"\" is no name of a header");
    if (value.find_first_of(StringView(u"\r\n\0", 3)) != String::npos) {
      Refuse(u"The value of the header \"" + name +
             u"\" has more than one line or a character of code 0. Give it without those");
    }
    PutHeader(name, value);
    return {};
  }

  void PutHeader(const String& name, const String& value) {
    // How long the body is and where it ends is not for pages to say.
    if (EqualIgnoringCase(name, u"Content-Length") ||
        EqualIgnoringCase(name, u"Transfer-Encoding")) {
      return;
    }
    std::erase_if(request_.headers, [&](const auto& header) {
      return EqualIgnoringCase(FromUtf8(header.first), name);
    });
    request_.headers.emplace_back(ToUtf8(name), ToUtf8(value));
  }

  Value Send(const MethodArguments& arguments) {
    RequireOpened();
    const Value& body = arguments[0];
    if (!body.IsOmitted() && !body.IsEmpty() && !body.IsNull()) {
      request_.body = ToUtf8(body.ToText());
      const bool has_type =
          std::any_of(request_.headers.begin(), request_.headers.end(), [](const auto& header) {
            return EqualIgnoringCase(FromUtf8(header.first), u"Content-Type");
          });
      if (!has_type) PutHeader(u"Content-Type", u"text/plain;charset=UTF-8");
    }
    answer_ = Transfer(request_);
    state_ = kLoaded;
    return {};
  }

  Value Abort(const MethodArguments&) {
    request_ = {};
    answer_ = {};
    state_ = kUninitialized;
    return {};
  }

  // The values of all headers of that name; "" when there is none.
  Value GetResponseHeader(const MethodArguments& arguments) {
    const String name = arguments.Require(0).ToText();
    String values;
    for (const auto& header : RequireAnswer().headers) {
      if (!EqualIgnoringCase(FromUtf8(header.first), name)) continue;
      values += (values.empty() ? u"" : u", ") + FromUtf8(header.second);
    }
    return values;
  }
  Value GetAllResponseHeaders(const MethodArguments&) {
    std::string lines;
    for (const auto& [name, value] : RequireAnswer().headers) {
      lines.append(name).append(": ").append(value).append("\r\n");
    }
    return FromUtf8(lines);
  }

  Value GetReadyState() { return state_; }
  Value GetStatus() { return RequireAnswer().status; }
  Value GetStatusText() { return FromUtf8(RequireAnswer().status_text); }
  Value GetResponseText() {
    std::string_view type;
    for (const auto& [name, value] : RequireAnswer().headers) {
      if (EqualIgnoringCase(FromUtf8(name), u"Content-Type")) type = value;
    }
    return DecodeBody(answer_.body, type);
  }

  int32_t state_ = kUninitialized;
  TransferRequest request_;
  TransferAnswer answer_;
};

}  // namespace

Object CreateHttpRequest() { return Object(std::make_shared<HttpRequest>()); }

}  // namespace kestrelon::desktop
