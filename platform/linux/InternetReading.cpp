#include "desktop/http/Transfer.h"
#include "platform/linux/LinuxPlatform.h"

namespace kestrelon {

SystemHandle LinuxPlatform::OpenInternet(const String& agent, uint32_t access_type) {
  // The user's own way is the only one there is.
  if (access_type != 0) return 0;
  internet_agents_[++last_internet_handle_] = ToUtf8(agent);
  return last_internet_handle_;
}

SystemHandle LinuxPlatform::OpenInternetUrl(SystemHandle connection, const String& url,
                                            uint32_t flags) {
  const auto agent = internet_agents_.find(connection);
  if (agent == internet_agents_.end()) return 0;
  desktop::TransferRequest request;
  request.url = url;
  request.completeness = desktop::Completeness::kAsFarAsCame;
  request.headers.emplace_back("User-Agent", agent->second);
  if ((flags & kInternetReload) != 0) request.headers.emplace_back("Cache-Control", "no-cache");
  std::string content;
  if (IgnoreFailures([&] { content = desktop::Transfer(request).body; })) return 0;
  internet_files_[++last_internet_handle_] = {std::move(content), 0};
  return last_internet_handle_;
}

bool LinuxPlatform::ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                                     uint32_t& bytes_read) {
  bytes_read = 0;
  const auto found = internet_files_.find(file);
  if (found == internet_files_.end()) return false;
  InternetFile& open_file = found->second;
  bytes_read = static_cast<uint32_t>(open_file.content.copy(buffer, size, open_file.next));
  open_file.next += bytes_read;
  return true;
}

void LinuxPlatform::CloseInternetHandle(SystemHandle handle) {
  internet_files_.erase(handle);
  internet_agents_.erase(handle);
}

}  // namespace kestrelon
