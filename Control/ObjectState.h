// What one control object keeps between calls. Created empty with the control, never persisted.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "automation/DispatchObject.h"
#include "platform/Platform.h"

namespace kestrelon {

// Template tags with their replacements: three parallel arrays from index 0. Slots that were never
// written hold empty texts; consumers skip an entry whose tag is empty.
struct TagTable {
  std::vector<String> Tags;  // "<" + tag + ">"
  std::vector<String> TagFieldNames;
  std::vector<String> TagReplacements;

  // Sizes the arrays to 0..upper_bound, discarding what they held.
  void Reset(size_t upper_bound);
  // Grows the arrays to 0..upper_bound, keeping what they hold; never shrinks them.
  void GrowTo(size_t upper_bound);
  // Error 9 "Subscript out of range" when no extraction has sized the arrays yet.
  int32_t UpperBound() const;
};

// What the exported records are matched against: where the contacts of the bound folder stand in
// its order, by their texts as these were when the index was built. A row is a position less 1; of
// equal texts the smallest row is kept. Texts are in lower case.
struct ContactMatchIndex {
  std::unordered_map<String, size_t> row_of_id;
  // An entry for each e-mail address of a contact: names and address as one text.
  std::unordered_map<String, size_t> row_of_name_and_email;
};

struct ObjectState {
  Object outlook_application;
  Object mapi_namespace;
  Object current_appointment;
  Object current_task;
  Object current_mail;
  Object current_contact;
  Object second_contact;
  Object current_folder;
  Object bound_contact_folder;
  Object user_properties;
  // Nothing sets these two; they are released with the others.
  Object first_spare_item;
  Object second_spare_item;

  // Not touched by CleanUpOutlook:
  String server_name;  // written by ServerName and read by nothing
  Object excel_application;
  Object shared_mailbox_recipient;
  Object acrobat_application;
  Object acrobat_document;
  Object acrobat_pd_document;
  Object file_system;  // created on first use, see FileSystemOf
  Object dialer;       // of the last call that was placed
  TagTable tag_table;
  String remembered_store_id;  // of the last folder that an item was opened from
  OsVersionRecord os_version;
  int16_t os_version_result = 0;
  bool is_newer_system = false;  // never set back
  // What SetContactFolder was asked for and found.
  String contact_folder_name;
  int32_t found_subfolder_position = 0;  // from 1; 0 for none
  ContactMatchIndex match_index;
  bool is_match_index_built = false;
};

// What every member works on: the desktop and the state of the control it belongs to.
struct ControlContext {
  Platform& platform;
  ObjectState state{};
};

}  // namespace kestrelon
