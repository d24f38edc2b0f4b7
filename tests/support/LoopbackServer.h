// A web server on the loopback interface, one connection for each request. It answers by path
// ("/a%20b") what a test tells it to, else with a 404; an answer that ends with "…" goes on without
// end.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

#include "desktop/storage/FileDescriptor.h"

namespace kestrelon::testing {

class LoopbackServer {
 public:
  explicit LoopbackServer(std::map<std::string, std::string> answers)
      : answers_(std::move(answers)) {
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    bind(listener_.get(), generic, size);
    listen(listener_.get(), 8);
    getsockname(listener_.get(), generic, &size);
    url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    thread_ = std::thread([this] {
      while (Serve(desktop::FileDescriptor(accept(listener_.get(), nullptr, nullptr)))) continue;
    });
  }
  ~LoopbackServer() { Stop(); }

  // Ends the server; the requests that came.
  const std::vector<std::string>& Stop() {
    shutdown(listener_.get(), SHUT_RDWR);  // ends accept
    if (thread_.joinable()) thread_.join();
    return requests_;
  }

  std::string url;  // without a "/" at its end

 private:
  bool Serve(const desktop::FileDescriptor& client) {
    std::string request;
    std::string piece(1 << 16, 'x');
    for (size_t size = std::string::npos; request.size() < size;) {
      const ssize_t count = recv(client.get(), piece.data(), piece.size(), 0);
      if (count <= 0) return client.get() >= 0;
      request.append(piece, 0, static_cast<size_t>(count));
      const size_t head = request.find("\r\n\r\n");
      const size_t length = request.find("Content-Length: ");
      if (head == std::string::npos) continue;
      size = head + 4 + (length < head ? std::stoul(request.substr(length + 16)) : 0);
    }
    requests_.push_back(request);
    const size_t path = request.find(' ') + 1;
    const auto found = answers_.find(request.substr(path, request.find(' ', path) - path));
    const std::string answer =
        found != answers_.end() ? found->second : "HTTP/1.1 404 None\r\n\r\n";
    const auto send_text = [&client](const std::string& text) {
      return send(client.get(), text.data(), text.size(), MSG_NOSIGNAL) > 0;
    };
    while (send_text(answer) && answer.ends_with("…") && send_text(piece)) continue;
    return true;
  }

  const std::map<std::string, std::string> answers_;
  const desktop::FileDescriptor listener_{socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  std::vector<std::string> requests_;
  std::thread thread_;
};

}  // namespace kestrelon::testing
