#include "desktop/acrobat/Acrobat.h"

#include <memory>

#include "desktop/acrobat/AcrobatObjects.h"
#include "desktop/converter/Installation.h"

namespace kestrelon::desktop {
namespace {

std::shared_ptr<acrobat::Session> RunningSession() {
  const auto missing = IgnoreFailures([] { FindInstallation(ConversionFormat::kPdf); });
  if (missing) throw AutomationError(kCannotCreateObject, missing->description());
  static std::weak_ptr<acrobat::Session> running;
  std::shared_ptr<acrobat::Session> session = running.lock();
  if (session == nullptr) running = session = std::make_shared<acrobat::Session>();
  return session;
}

}  // namespace

Object CreateAcrobatApplication() {
  return Object(std::make_shared<acrobat::ApplicationObject>(RunningSession()));
}

Object CreateAcrobatDocument() {
  return Object(std::make_shared<acrobat::DocumentObject>(RunningSession(), nullptr));
}

}  // namespace kestrelon::desktop
