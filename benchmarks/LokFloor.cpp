// What LibreOfficeKit itself needs to load a document and save it as PDF:
// lok_floor PROGRAM_FOLDER DOCUMENT PDF ROUNDS prints the mean of the warm rounds in nanoseconds.

#define LOK_USE_UNSTABLE_API
#include <LibreOfficeKit/LibreOfficeKitInit.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  setenv("SAL_USE_VCLPLUGIN", "svp", 1);
  char profile[] = "/tmp/lok-floor-XXXXXX";
  if (mkdtemp(profile) == nullptr) return 1;
  const std::string profile_url = std::string("file://") + profile;
  LibreOfficeKit* office = lok_init_2(argv[1], profile_url.c_str());
  if (office == nullptr) return 1;
  const std::string source = std::string("file://") + argv[2];
  const std::string target = std::string("file://") + argv[3];
  const int rounds = std::atoi(argv[4]);
  auto start = std::chrono::steady_clock::now();
  for (int i = -2; i < rounds; ++i) {
    if (i == 0) start = std::chrono::steady_clock::now();
    LibreOfficeKitDocument* document = office->pClass->documentLoad(office, source.c_str());
    if (document == nullptr) return 1;
    if (document->pClass->saveAs(document, target.c_str(), "pdf", "") == 0) return 1;
    document->pClass->destroy(document);
  }
  const std::chrono::nanoseconds spent = std::chrono::steady_clock::now() - start;
  std::printf("%lld\n", static_cast<long long>(spent.count() / rounds));
  std::fflush(stdout);
  const std::string remove = std::string("rm -rf ") + profile;
  if (std::system(remove.c_str()) != 0) return 1;
  _Exit(0);  // LibreOffice has nothing to say at exit that anyone waits for
}
