// Text order of a language.
#pragma once

#include <memory>
#include <string>

#include "automation/Text.h"

struct UCollator;

namespace kestrelon::desktop {

// The language tag ("en-GB") that the user's texts are sorted by: of LC_ALL, LC_COLLATE or LANG,
// the first that is set; "" for C, POSIX and none.
std::string UserCollationLanguage();

class Collation {
 public:
  enum class FirstCase { kLower, kUpper };  // where texts differ in nothing else

  // A language that is not known, like "", has the order that most languages share.
  Collation(const std::string& language, FirstCase first_case);

  // Bytes that compare as the texts do.
  std::string KeyOf(StringView text) const;

 private:
  struct Close {
    void operator()(UCollator* collator) const;
  };
  std::unique_ptr<UCollator, Close> collator_;
};

}  // namespace kestrelon::desktop
