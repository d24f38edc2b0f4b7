// Before <windows.h>, which would bring in its predecessor.
#include <winsock2.h>
// Takes back its macros, one of which would rename a method of the platform.
#include "platform/windows/Win32.h"
// Brings in <windows.h> too.
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <string>
#include <thread>

#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {
namespace {

using ::testing::HasSubstr;

// A web server on this machine, which asks each connection once.
class HttpServer {
 public:
  // `answer` makes the whole answer to a request's head, on another thread.
  explicit HttpServer(std::function<std::string(const std::string& request)> answer)
      : answer_(std::move(answer)) {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof address;
    bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
    listen(listener_, SOMAXCONN);
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
    url_ = FromUtf8("http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)));
    thread_ = std::thread([this] { Serve(); });
  }
  ~HttpServer() {
    closesocket(listener_);
    thread_.join();
    WSACleanup();
  }
  const String& url() const { return url_; }  // without a slash at its end

 private:
  void Serve() {
    SOCKET connection;
    while ((connection = accept(listener_, nullptr, nullptr)) != INVALID_SOCKET) {
      char request[4096];
      const int length = recv(connection, request, sizeof request, 0);
      const std::string answer = answer_({request, static_cast<size_t>(std::max(length, 0))});
      send(connection, answer.data(), static_cast<int>(answer.size()), 0);
      closesocket(connection);
    }
  }

  const std::function<std::string(const std::string& request)> answer_;
  SOCKET listener_ = INVALID_SOCKET;
  String url_;
  std::thread thread_;
};

String ReadAll(const String& url) {
  WindowsPlatform platform([] { return HWND(); });
  const SystemHandle connection = platform.OpenInternet(u"VB OpenUrl", 0);
  const SystemHandle page = platform.OpenInternetUrl(connection, url, kInternetReload);
  std::string text;
  char bytes[2048];
  uint32_t count = 0;
  while (page != 0 && platform.ReadInternetFile(page, bytes, sizeof bytes, count) && count > 0) {
    text.append(bytes, count);
  }
  if (page != 0) platform.CloseInternetHandle(page);
  platform.CloseInternetHandle(connection);
  return page == 0 ? u"refused" : FromAnsi(text);
}

TEST(InternetReading, ReadsPagesWhole) {
  std::string big(300000, '\0');
  for (size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>(i % 251);
  auto server = std::make_unique<HttpServer>([&](const std::string& request) {
    const std::string answer = " OK\r\nConnection: close\r\n\r\n";
    if (request.starts_with("GET /echo")) return "HTTP/1.0 200" + answer + request;
    if (request.starts_with("GET /big")) return "HTTP/1.0 200" + answer + big;
    return "HTTP/1.0 404" + answer + "not here";
  });
  for (const StringView name : {u"/echo", u"/echo\u00E9", u"/echo\u5C71"}) {
    EXPECT_THAT(ToAnsi(ReadAll(server->url() + String(name))),
                HasSubstr("User-Agent: VB OpenUrl\r\n"));
  }
  EXPECT_EQ(ToAnsi(ReadAll(server->url() + u"/big")), big);
  EXPECT_EQ(ReadAll(server->url() + u"/missing"), u"not here");
  EXPECT_EQ(ReadAll(server->url() + String(u"/echo\0more", 10)), u"refused");
  const String url = server->url();
  server.reset();
  EXPECT_EQ(ReadAll(url), u"refused");
}

}  // namespace
}  // namespace kestrelon
