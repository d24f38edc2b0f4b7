# The Outlook road of ./demo: a page's session with a mailbox of its own. Needs $kestrelon and $out.

export KESTRELON_MAILBOX=$project/$out/outlook
mkdir -p "$KESTRELON_MAILBOX"
records=examples/contacts

# One page: a session that runs beside this script.
coproc page { "$kestrelon" session; }

# json TEXT: as a JSON string.
json() {
  local text=$1
  text=${text//\\/\\\\}
  text=${text//\"/\\\"}
  text=${text//$'\n'/\\n}
  text=${text//$'\r'/\\r}
  printf '"%s"' "$text"
}

# ask MEMBER NAME VALUE …: one call of the page; its result, as JSON, is in $result. A value is a
# text, or one of the words true and false.
ask() {
  local member=$1 arguments= value messages
  shift
  while [ $# -gt 0 ]; do
    value=$2
    [ "$value" = true ] || [ "$value" = false ] || value=$(json "$value")
    arguments+="${arguments:+,}\"$1\":$value"
    shift 2
  done
  echo "{\"member\":\"$member\",\"args\":{$arguments}}" >&"${page[1]}"
  read -r answer <&"${page[0]}"
  result=${answer%%,\"args\":*}
  result=${result#\{\"result\":}
  messages=${answer##*,\"messages\":[}
  messages=${messages%%]*}
  [ -z "$messages" ] || echo "  message: $messages"
}

# export_record FILE OVERWRITE_SAME_ID OVERWRITE_SAME_NAME_AND_MAIL WHAT
export_record() {
  ask AddUpdateContactXML ContactRecordXML "$(cat "$records/$1")" \
    overwriteKestrelonIDMatch "$2" overwriteEmailNameMatch "$3"
  printf '%-14s -> %-5s %s\n' "$1" "$result" "$4"
}

# What the page reads out of a list: the id that stands behind a name.
id_of() {
  local behind=${result#*"$1"\#\~}
  echo "${behind%%\#\~*}"
}

contacts() { "$kestrelon" mailbox list Contacts; }

say "A contact and a task of other programs come into the mailbox"
"$kestrelon" mailbox import "$records/Nakamura.vcf" "$records/Drawings.ics"

say "A page exports CRM contacts: AddUpdateContactXML"
ask SetContactFolder foldername Contacts
export_record Lindqvist.xml true true "created"
export_record Osei.xml true true "created"
export_record Nakamura.xml true true "found by name and e-mail, overwritten and stamped"
export_record Nameless.xml true true "skipped"
ask SetContactFolder foldername Contacts
export_record Osei.xml false false "found by its id, left as it is"
export_record OseiMoved.xml true false "found by its id, overwritten"
contacts

say "The contacts as the page gets them: GetFolderContactItems"
ask GetFolderContactItems foldertosearch ""
echo "$result"

say "One of them back into the CRM: ImportContact"
ask ImportContact foldername "" contactname "$(id_of "Marcus Osei")"
echo "$result"

say "The card of the other program, overwritten: what the CRM does not know is untouched"
cat "$KESTRELON_MAILBOX"/Contacts/2f6b1d0e-*.vcf

say "The user selects a task; the page stamps it as the CRM's: SetItemAsKestrelon"
ask GetFolderTaskItems foldertosearch ""
"$kestrelon" mailbox open
"$kestrelon" mailbox select "$(id_of "Send Zoë the café drawings")"
ask GetOutlookSelection
echo "GetOutlookSelection -> $result"
selection=${result//\"/}
ask SetItemAsKestrelon ItemType task StoreID "${selection#*,}" OutlookID "${selection%,*}" \
  AccountID TC-0042 ItemID 4F9E
echo "SetItemAsKestrelon  -> $result"
ask CheckIfSynchronised strEntryID "{9A4D7C18-0B62-4F3E-8D7A-61C5E2F0B3A4}" strItemType contact
echo "CheckIfSynchronised -> $result"
"$kestrelon" mailbox show "${selection%,*}"
"$kestrelon" mailbox close

say "A reply opens as a draft: SendEmailWithOriginal"
before=$(drafts)
ask SendEmailWithOriginal strAddress zoe.lindqvist-pena@thistleandcrumb.example \
  strFrom "Zoë Lindqvist-Peña" strSent "20 November 2026 16:04" strTo "Renée Holm" \
  strSubject "The counter" strBody $'Is oiled oak right for a bakery?\r\nZoë'
echo "SendEmailWithOriginal -> $result"
show_new_draft "$before"

exec {page[1]}>&-
wait "$page_PID"

say "The mailbox"
"$kestrelon" mailbox list
