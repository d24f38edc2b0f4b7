// A web server on this machine for one test. Each connection is asked once.
#pragma once

// Before <windows.h>, which would bring in its predecessor.
#include <winsock2.h>

#include <algorithm>
#include <functional>
#include <string>
#include <thread>

#include "automation/Text.h"

namespace kestrelon {

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
    Stop();
    WSACleanup();
  }

  // From now on connections are refused.
  void Stop() {
    if (!thread_.joinable()) return;
    closesocket(listener_);
    thread_.join();
  }
  const String& url() const { return url_; }  // without a slash at its end

 private:
  void Serve() {
    for (;;) {
      const SOCKET connection = accept(listener_, nullptr, nullptr);
      if (connection == INVALID_SOCKET) return;
      std::string request(4096, '\0');
      const int length = recv(connection, request.data(), static_cast<int>(request.size()), 0);
      request.resize(static_cast<size_t>(std::max(length, 0)));
      const std::string answer = answer_(request);
      send(connection, answer.data(), static_cast<int>(answer.size()), 0);
      closesocket(connection);
    }
  }

  std::function<std::string(const std::string& request)> answer_;
  SOCKET listener_ = INVALID_SOCKET;
  String url_;
  std::thread thread_;
};

}  // namespace kestrelon
