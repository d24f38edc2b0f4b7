#include "desktop/tapi/Dialer.h"

#include "desktop/opener/Opener.h"
#include "desktop/server/ServerObject.h"
#include "desktop/storage/Paths.h"
#include "desktop/tapi/Configuration.h"
#include "desktop/tapi/DialRequest.h"

namespace kestrelon::desktop {
namespace {

class LinkDialer final : public ServerObject<LinkDialer> {
 public:
  static const MemberTable<LinkDialer>& Members() {
    static const MemberTable<LinkDialer> table =
        MemberTable<LinkDialer>(u"Dialer")
            .Method(u"MakeCall", &LinkDialer::MakeCall, {u"Parameters"})
            .Method(u"HangupCall", &LinkDialer::HangupCall)
            .Method(u"GetVersion", &LinkDialer::GetVersion);
    return table;
  }

 private:
  Value MakeCall(const MethodArguments& arguments) {
    const String number = NumberToDial(arguments.Require(0).ToText());
    const std::string link = TelephoneLink(number);
    if (!HasProgramForLinks("tel")) {
      throw AutomationError(kFileNotFound,
                            u"There is no program for telephone links to call " +
                                FromUtf8(link.substr(link.find(':') + 1)) +
                                u" with. Install one and make it the desktop's choice, or set "
                                u"KESTRELON_OPENER to a program.");
    }
    if (OpenForUser(link) != OpenOutcome::kStarted) {
      throw AutomationError(kFileNotFound, u"The program that opens \"" + FromUtf8(link) +
                                               u"\" cannot be started. Check KESTRELON_OPENER.");
    }
    return {};
  }
  Value HangupCall(const MethodArguments&) {
    throw AutomationError(kInvalidProcedureCall,
                          u"A call through a telephone link is ended in the program that makes it");
  }
  Value GetVersion(const MethodArguments&) { return KESTRELON_VERSION; }
};

class ConfiguredDialer final : public ServerObject<ConfiguredDialer> {
 public:
  ConfiguredDialer(DialerSettings settings, const std::filesystem::path& file)
      : settings_(std::move(settings)), file_(FromUtf8(file.string())) {}

  static const MemberTable<ConfiguredDialer>& Members() {
    static const MemberTable<ConfiguredDialer> table =
        MemberTable<ConfiguredDialer>(u"Dialer")
            .Method(u"MakeCall", &ConfiguredDialer::MakeCall, {u"Parameters"})
            .Method(u"HangupCall", &ConfiguredDialer::HangupCall)
            .Method(u"GetVersion", &ConfiguredDialer::GetVersion);
    return table;
  }

 private:
  Value MakeCall(const MethodArguments& arguments) {
    parameters_ = arguments.Require(0).ToText();
    Run(settings_.call, u"call");
    return {};
  }
  Value HangupCall(const MethodArguments&) {
    if (settings_.hangup.empty()) {
      throw AutomationError(kInvalidProcedureCall,
                            u"The dialer \"" + settings_.prog_id +
                                u"\" cannot end calls. Add its \"hangup\" to " + file_ + u".");
    }
    Run(settings_.hangup, u"hangup");
    return {};
  }
  Value GetVersion(const MethodArguments&) { return settings_.version; }

  void Run(const CommandWords& command, StringView key) const {
    std::vector<std::string> arguments;
    for (size_t i = 1; i < command.size(); ++i) {
      arguments.push_back(FillPlaceholders(command[i], parameters_));
    }
    if (RunForUser(command.front(), arguments, 0)) return;
    throw AutomationError(kFileNotFound, u"The program \"" + FromUtf8(command.front()) +
                                             u"\" of the dialer \"" + settings_.prog_id +
                                             u"\" cannot be started. Install it, or correct \"" +
                                             String(key) + u"\" in " + file_ + u".");
  }

  const DialerSettings settings_;
  const String file_;
  String parameters_;  // of the last call, which a hang-up may name too
};

}  // namespace

Object CreateLinkDialer() { return Object(std::make_shared<LinkDialer>()); }

Object CreateConfiguredDialer(StringView prog_id) {
  const Configuration configuration = ReadConfiguration();
  for (const DialerSettings& settings : configuration.dialers) {
    if (EqualIgnoringCase(settings.prog_id, prog_id)) {
      return Object(std::make_shared<ConfiguredDialer>(settings, configuration.file));
    }
  }
  const String file = configuration.file.empty()
                          ? u"the configuration file"
                          : String(u"the configuration file ") + TextFromPath(configuration.file);
  throw AutomationError(kCannotCreateObject,
                        u"ActiveX component can't create object \"" + String(prog_id) +
                            u"\": it is not built in, and " + file +
                            u" has no dialer of that name. Correct the name, or add it there.");
}

}  // namespace kestrelon::desktop
