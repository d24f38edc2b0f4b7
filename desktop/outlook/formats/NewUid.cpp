#include "desktop/outlook/formats/NewUid.h"

#include <glib.h>

namespace kestrelon::desktop {

std::string NewUid() {
  char* const text = g_uuid_string_random();
  std::string uid = text;
  g_free(text);
  return uid;
}

}  // namespace kestrelon::desktop
