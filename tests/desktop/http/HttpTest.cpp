#include <gmock/gmock.h>

#include "desktop/http/BodyText.h"
#include "desktop/http/HttpRequest.h"
#include "desktop/http/Transfer.h"
#include "documents/TemplateLists.h"
#include "files/Uploading.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/Failures.h"
#include "tests/support/LoopbackServer.h"

namespace kestrelon {
namespace {

using namespace std::string_view_literals;
using namespace ::testing;  // NOLINT(google-build-using-namespace): matchers

struct Http : Test {
  Http() { setenv("no_proxy", "127.0.0.1,.invalid", 1); }
  String Url(const std::string& path) { return FromUtf8(server.url + path); }
  void Send(const char16_t* method, const String& url, const Value& body = {}) {
    request.Call(u"open", method, url, false);
    request.Call(u"send", body);
  }

  testing::LoopbackServer server{{
      {"/a%20b%C3%A9%25?x=%22%20y", "HTTP/1.1 200 All right\r\nX-A: 1\r\nx-a: 2\r\n\r\nZ\xC3\xB6"},
      {"/ok/a%20b.txt", "HTTP/1.1 200 OK\r\n\r\n"},
      {"/no/a%20b.txt", "HTTP/1.1 403 Forbidden\r\n\r\n<A HREF>no"},
      {"/put/a%20b.txt", "HTTP/1.1 500 Internal Server Error\r\n\r\n<A HREF>oh"},
      {"/cut/a%20b.txt", "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n"},
      {"/endless/a%20b.txt", "HTTP/1.1 200 OK\r\n\r\n…"},
      {"/cut", "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n<A HREF>half"},
      {"/endless", "HTTP/1.1 200 OK\r\n\r\n…"},
      {"/kept", "HTTP/1.1 307 Temporary Redirect\r\nLocation: /no/a%20b.txt\r\n\r\nmoved"},
      {"/round", "HTTP/1.1 302 Found\r\nLocation: /round\r\n\r\nmoved"},
      {"/inside", "HTTP/1.1 302 Found\r\nLocation: file:///etc/hostname\r\n\r\nmoved"},
      {"/t", "HTTP/1.1 200 OK\r\n\r\n<A HREF>[Up]</A>" + std::string(2030, '-') +
                 "<A HREF=\"q\">Q\xE9.dotx</A>"},
  }};
  const String refused_url = FromUtf8(testing::LoopbackServer({}).url + "/x");
  LinuxPlatform platform{[](const String&, int32_t, const std::optional<String>&) { return 1; }};
  const Object request = desktop::CreateHttpRequest();
};

TEST_F(Http, AnAnswerCanBeRead) {
  request.Call(u"open", u"get", Url("") + u"/a bé%25?x=\" y#part", true);
  EXPECT_EQ(NumberOf([&] { request.Get(u"status"); }), static_cast<int32_t>(0x8000000A));
  request.Call(u"send");
  EXPECT_EQ(request.Get(u"status").ToLong(), 200);
  EXPECT_EQ(request.Get(u"statusText").ToText(), u"All right");
  EXPECT_EQ(request.Get(u"responseText").ToText(), u"Zö");
  EXPECT_EQ(request.Call(u"getResponseHeader", u"X-a").ToText(), u"1, 2");
  EXPECT_EQ(request.Call(u"getAllResponseHeaders").ToText(), u"X-A: 1\r\nx-a: 2\r\n");
  request.Call(u"abort");
  EXPECT_EQ(NumberOf([&] { request.Call(u"send"); }), static_cast<int32_t>(0x80004005));
  for (const auto& [body, type, text] :
       {std::tuple("\xEF\xBB\xBFZ\xC3\xB6", "text/plain; charset=koi8-r", u"Zö"),
        {"Z\xC3\xB6\xFF", "text/plain", u"Zö\xFFFD"},
        {"Z\x80", "text/html; Charset=\"ISO-8859-1\"; x=y", u"Z€"},
        {"\xCB\xCF\xD4", "text/html;charset=koi8-r", u"кот"}}) {
    EXPECT_EQ(desktop::DecodeBody(body, type), text) << type;
  }
}

TEST_F(Http, TextsAreSentInUtf8WithTheHeadersOfThePage) {
  Send(u"PUT", Url("/kept"), u"Zoë €");
  request.Call(u"open", u"POST", Url("/no/a%20b.txt"), false);
  request.Call(u"setRequestHeader", u"X-B", u"1");
  request.Call(u"setRequestHeader", u"Content-type:", u" text/xml ");
  request.Call(u"setRequestHeader", u"x-b", u"");
  request.Call(u"send", u"<a/>");
  const auto& sent = server.Stop();
  EXPECT_THAT(sent[1], AllOf(StartsWith("PUT /no/"), EndsWith("Zo\xC3\xAB \xE2\x82\xAC"),
                             HasSubstr("\r\nContent-Type: text/plain;charset=UTF-8\r\n")));
  EXPECT_THAT(sent[2], AllOf(HasSubstr("\r\nContent-type: text/xml\r\n"), HasSubstr("\r\nx-b:\r\n"),
                             EndsWith("\r\n\r\n<a/>"), Not(HasSubstr("X-B"))));
}

TEST_F(Http, WhatFailsOrIsRefusedSaysWhy) {
  for (const auto& [method, url, number, why] :
       {std::tuple(u"G ET", String(u"http://h/"), int32_t{kInvalidProcedureCall}, "no method"),
        {u"GET", u"page.htm", desktop::kBadAddress, "http://server/path"},
        {u"GET", String(u"http://h/\0a", 11), desktop::kBadAddress, "http://server/path"},
        {u"GET", u"FILE:///etc/hostname", desktop::kUnknownScheme, "Use http"},
        {u"PUT", u"ftp://h/a", desktop::kUnknownScheme, "Use http"},
        {u"GET", refused_url, desktop::kCannotConnect, "/x' has a server that cannot be reached"},
        {u"GET", u"http://nowhere.invalid/", desktop::kServerNotFound, "nowhere.invalid"},
        {u"GET", Url("/cut"), desktop::kTransferBroken, "too early"},
        {u"GET", Url("/endless"), desktop::kTransferBroken, "too long"},
        {u"GET", Url("/round"), desktop::kTooManyRedirects, "ten"},
        {u"GET", Url("/inside"), desktop::kUnknownScheme, "not of the web"}}) {
    const AutomationError error = FailureOf([&, &m = method, &u = url] { Send(m, u); });
    EXPECT_EQ(error.number(), number) << error.what();
    EXPECT_THAT(ToUtf8(error.description()), HasSubstr(why));
  }
  request.Call(u"open", u"GET", u"ftp://h/a");
  for (const auto header : {u"a\r\nb=1"sv, u":=1"sv, u"a b=1"sv, u"a=1\r\nb: 2"sv, u"a=1\0"sv}) {
    const std::vector<String> parts = Split(header, u"=");
    const auto set = [&] { request.Call(u"setRequestHeader", parts[0], parts[1]); };
    EXPECT_EQ(NumberOf(set), kInvalidProcedureCall) << ToUtf8(header);
  }
}

TEST_F(Http, MembersTakeWhatAServerAnswers) {
  const desktop::PrivateFolder folder("kestrelon-test-");
  desktop::WriteFileAtomically(folder.path() / "a b.txt", "Caf\xE9 \x80");
  ControlContext context{platform};
  const auto upload = [&](String to) {
    String path = FromUtf8((folder.path() / "a b.txt").string());
    return UploadFile(context, path, to);
  };
  EXPECT_TRUE(upload(Url("/put/")) && upload(Url("/no")) && upload(Url("/ok")));
  EXPECT_FALSE(upload(refused_url) || upload(Url("/cut")) || upload(Url("/endless")));
  for (auto [folder_url, list] : {std::pair(Url("/t\\"), u"Qé.dotx"),
                                  {Url("/no/a b.txt"), u"no"},
                                  {Url("/put/a b.txt"), u"oh"},
                                  {refused_url, u"Empty"},
                                  {Url("/cut"), u"half"},
                                  {Url("/endless"), u"Empty"},
                                  {Url("/round"), u"Empty"}}) {
    String type = u"home";
    EXPECT_EQ(GetTemplateList(context, folder_url, type), list) << ToUtf8(folder_url);
  }
  EXPECT_THAT(server.Stop()[0], AllOf(StartsWith("PUT /put/a%20b.txt HTTP/1.1\r\n"),
                                      EndsWith("\r\n\r\nCaf\xC3\xA9 \xE2\x82\xAC")));
  EXPECT_THAT(server.Stop()[5], AllOf(StartsWith("GET /t "), HasSubstr("VB OpenUrl\r\n"),
                                      HasSubstr("\r\nCache-Control: no-cache\r\n")));
}

}  // namespace
}  // namespace kestrelon
