"""Reads a mail message independently of what wrote it and prints what it says, one fact a line."""

import email
import email.policy
import sys


def addresses(header):
    for group in header.groups:
        if group.display_name is not None and not group.addresses:
            yield f"name {group.display_name!r}"
        for address in group.addresses:
            yield f"{address.display_name!r} {address.addr_spec}"


def describe(part, depth):
    print("  " * depth + part.get_content_type(), part.get_content_disposition() or "",
          repr(part.get_filename() or ""), *part.get_all("Content-ID", []))
    if part.is_multipart():
        for child in part.iter_parts():
            describe(child, depth + 1)
    else:
        content = part.get_content()
        print("  " * depth + "=", repr(content))


with open(sys.argv[1], "rb") as file:
    raw = file.read()
assert b"\n" not in raw.replace(b"\r\n", b""), "bare line feed"
head, _, body = raw.partition(b"\r\n\r\n")
assert body.isascii(), "not 7-bit"
assert all(word.isascii() or b"@" in word for word in head.split()), "more than addresses in UTF-8"
assert max(len(line) for line in raw.split(b"\r\n")) <= 998, "line too long"
message = email.message_from_string(raw.decode(), policy=email.policy.default)
assert message["Date"].datetime.tzinfo is not None
assert message["Message-ID"].startswith("<") and not message["From"]
print("headers", sorted(name for name in message.keys() if not name.startswith("Content-")))
for name in ("X-Unsent", "Subject"):
    print(name, repr(str(message[name])))
for name in ("To", "Cc", "Bcc"):
    for value in message.get_all(name, []):
        for address in addresses(value):
            print(name, address)
describe(message, 0)
assert not any(part.defects for part in message.walk()), "malformed"
