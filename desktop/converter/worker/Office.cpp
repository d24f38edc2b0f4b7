#include "desktop/converter/worker/Office.h"

#include <LibreOfficeKit/LibreOfficeKitInit.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/converter/WorkerProtocol.h"
#include "desktop/converter/worker/Sandbox.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

// LibreOfficeKit sets the macro level itself, to 1, unless it is told otherwise with each document.
constexpr char kLoadOptions[] = "MacroSecurityLevel=3,EnableMacrosExecution=false";

void Reply(const std::string& failure) {
  const std::string message = failure.empty() ? std::string(1, kReplyDone) : kReplyFailed + failure;
  const size_t size = std::min(message.size(), kMaximumMessage);
  send(kWorkerSocket, message.data(), size, MSG_NOSIGNAL);
}

std::string UrlOf(const fs::path& path) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string url = "file://";
  for (const char c : path.string()) {
    if (kPlain.find(c) != std::string_view::npos) {
      url += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    url += '%';
    url += kDigits[byte >> 4];
    url += kDigits[byte & 15];
  }
  return url;
}

std::string LastError(LibreOfficeKit* office) {
  char* const text = office->pClass->getError(office);
  std::string error = text == nullptr ? "" : text;
  if (text != nullptr && LIBREOFFICEKIT_HAS(office, freeError)) office->pClass->freeError(text);
  error.erase(error.find_last_not_of(". \n") + 1);  // it goes on within a sentence of ours
  return error.empty() ? "no reason given" : error;
}

std::vector<std::string> SplitRequest(std::string_view request) {
  std::vector<std::string> fields(1);
  for (const char c : request) {
    if (c == '\0') {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

void Answer(LibreOfficeKit* office, const std::vector<std::string>& request) {
  if (request.size() != 4) return Reply("the worker does not understand the request");
  LibreOfficeKitDocument* const document =
      office->pClass->documentLoadWithOptions(office, UrlOf(request[0]).c_str(), kLoadOptions);
  if (document == nullptr) {
    return Reply("LibreOffice cannot read it (" + LastError(office) +
                 "); check that it is an undamaged document without a password");
  }
  const int saved = document->pClass->saveAs(document, UrlOf(request[1]).c_str(),
                                             request[2].c_str(), request[3].c_str());
  const std::string failure =
      saved != 0 ? "" : "LibreOffice cannot write it (" + LastError(office) + ")";
  // Before the reply: as long as the document is loaded, the office suite's own thread spends more
  // on idle work for it than unloading costs.
  document->pClass->destroy(document);
  Reply(failure);
}

// A crash must end the process at once, not in a handler that tries to rescue documents.
void LetCrashesEndTheProcess() {
  for (const int number : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL}) signal(number, SIG_DFL);
  const rlimit no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
}

}  // namespace

int ServeConversions(const fs::path& program_folder, const fs::path& private_folder) {
  const fs::path home = private_folder / kHomeFolder;
  const std::string failure = EnterSandbox(
      private_folder,
      {fs::weakly_canonical(program_folder / ".."), home / ".fonts", home / ".local/share/fonts"});
  if (!failure.empty()) {
    Reply(failure);
    return 1;
  }
  LibreOfficeKit* const office =
      lok_init_2(program_folder.c_str(), UrlOf(private_folder / kProfileFolder).c_str());
  if (office == nullptr) {
    Reply("its library in " + program_folder.string() +
          " cannot be used; check that the installation is complete");
    return 1;
  }
  LetCrashesEndTheProcess();
  Reply("");
  std::string message(kMaximumMessage, '\0');
  while (true) {
    const ssize_t size = recv(kWorkerSocket, message.data(), message.size(), 0);
    if (size <= 0) return 0;
    Answer(office, SplitRequest({message.data(), static_cast<size_t>(size)}));
  }
}

}  // namespace kestrelon::desktop
