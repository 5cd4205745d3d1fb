#!/usr/bin/python3
"""Turns a folder of mail (.eml) and contacts (.vcf) into the store that standin_outlook reads.

Every file that cannot be taken is named on standard error with the reason; nothing is left out silently.
Needs Debian's python3-vobject.
"""

import argparse
import codecs
import hashlib
import json
import sys
from email import message_from_bytes, policy
from html.parser import HTMLParser
from pathlib import Path

import vobject

BLOCKS = set(
    "address article blockquote center dd div dl dt fieldset footer form h1 h2 h3 h4 h5 h6 header hr li ol p pre "
    "section table tr ul".split()
)
PARAGRAPHS = {"p", "h1", "h2", "h3", "h4", "h5", "h6", "blockquote", "ul", "ol", "table", "pre"}
HIDDEN = {"head", "script", "style", "title", "template"}


class Unusable(Exception):
    """Why a file gives no item."""


class TextOfHtml(HTMLParser):
    """The text that a reader of the page sees, one line a block."""

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.lines = [""]
        self.hidden = 0
        self.preformatted = 0
        self.cells = 0

    def new_line(self, paragraph=False):
        if self.lines[-1].strip():
            self.lines.append("")
        if paragraph and len(self.lines) > 1 and self.lines[-2] != "":
            self.lines.append("")

    def handle_starttag(self, tag, attrs):
        if tag in HIDDEN:
            self.hidden += 1
        elif tag == "br":
            self.lines.append("")
        elif tag in ("td", "th"):
            if self.cells:
                self.lines[-1] += "\t"
            self.cells += 1
        elif tag in BLOCKS:
            self.new_line(tag in PARAGRAPHS)
            self.cells = 0 if tag == "tr" else self.cells
            if tag == "li":
                self.lines[-1] += "* "
        if tag == "pre":
            self.preformatted += 1

    def handle_endtag(self, tag):
        if tag in HIDDEN:
            self.hidden = max(0, self.hidden - 1)
        elif tag in BLOCKS:
            self.new_line(tag in PARAGRAPHS)
        if tag == "pre":
            self.preformatted = max(0, self.preformatted - 1)

    def handle_data(self, data):
        if self.hidden:
            return
        if self.preformatted:
            first, *others = data.splitlines() or [""]
            self.lines[-1] += first
            self.lines.extend(others)
            return
        text = " ".join(part for part in data.replace("\u00a0", " ").split())
        if data[:1].isspace() and self.lines[-1] and not self.lines[-1][-1].isspace():
            text = " " + text
        if data[-1:].isspace() and text.strip():
            text += " "
        if self.lines[-1] or text.strip():
            self.lines[-1] += text

    def text(self):
        lines = [line.rstrip() for line in self.lines]
        while lines and not lines[0]:
            lines.pop(0)
        while lines and not lines[-1]:
            lines.pop()
        return "\n".join(lines) + "\n" if lines else ""


def text_of_html(html):
    parser = TextOfHtml()
    parser.feed(html)
    parser.close()
    return parser.text()


def as_read(text):
    """Mail that calls itself Latin-1 but holds the quotes and dashes of Windows-1252 is shown by every mail program as
    meant."""
    return "".join(bytes([ord(c)]).decode("cp1252", "replace") if "\x80" <= c <= "\x9f" else c for c in text)


def from_raw(text):
    """A header with bytes beyond ASCII that nothing declares: UTF-8 if it can be, else Windows-1252."""
    data = text.encode("ascii", "surrogateescape")
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError:
        return data.decode("cp1252", "replace")


def with_crlf(text):
    return text.replace("\r\n", "\n").replace("\r", "\n").replace("\n", "\r\n")


class Importer:
    def __init__(self, warn):
        self.warn = warn
        self.items = []
        self.skipped = 0
        self.seen = {}

    def entry_id(self, data):
        """The same for the same content on every import; copies of one file are told apart by their order."""
        digest = hashlib.sha256(data).hexdigest().upper()[:40]
        self.seen[digest] = self.seen.get(digest, 0) + 1
        return f"{digest}{self.seen[digest]:08X}"

    def add_folder(self, folder):
        for path in sorted(folder.rglob("*"), key=lambda p: p.relative_to(folder).as_posix()):
            kind = path.suffix.lower()
            if not path.is_file() or kind not in (".eml", ".vcf"):
                continue
            name = path.relative_to(folder).as_posix()
            try:
                data = path.read_bytes()
                if kind == ".eml":
                    self.add_mail(name, data)
                else:
                    self.add_contacts(name, data)
            except (Unusable, OSError) as problem:
                self.skipped += 1
                self.warn(f"{name}: skipped: {problem}")
            except Exception as problem:  # a parser's own failure: the other files are still wanted
                self.skipped += 1
                self.warn(f"{name}: skipped: {type(problem).__name__}: {problem}")

    def content(self, name, part):
        try:
            text = part.get_content()
        except LookupError:
            self.warn(f"{name}: unknown character set {part.get_content_charset()!r}, read as Latin-1")
            text = part.get_payload(decode=True).decode("latin-1")
        if "\ufffd" in text:
            self.warn(f"{name}: some characters of the body do not fit its character set")
        return as_read(text)

    def header(self, name, message, field):
        raw = next((value for key, value in message.raw_items() if key.lower() == field.lower()), None)
        try:
            if raw is not None and not raw.isascii():
                self.warn(f"{name}: header {field} has characters without an encoding")
                return message.policy.header_factory(field, from_raw(" ".join(raw.split())))
            return message[field]
        except Exception as problem:
            self.warn(f"{name}: header {field} cannot be read: {problem}")
            return None

    def people(self, name, message, field):
        value = self.header(name, message, field)
        if value is None:
            return []
        return [(address.display_name or address.addr_spec, address.addr_spec) for address in value.addresses]

    def add_mail(self, name, data):
        message = message_from_bytes(data.removeprefix(codecs.BOM_UTF8), policy=policy.default)
        if not any(message.get(field) for field in ("From", "Subject", "Date", "To", "Received")):
            raise Unusable("no mail headers")
        plain = message.get_body(("plain",))
        html = message.get_body(("html",))
        if plain is not None:
            body = self.content(name, plain)
        elif html is not None:
            body = text_of_html(self.content(name, html))
        else:
            body = ""
            self.warn(f"{name}: no text part, imported with an empty body")
        sender = self.people(name, message, "From")
        recipients = self.people(name, message, "To")
        subject = self.header(name, message, "Subject")
        date = self.header(name, message, "Date")
        self.items.append(
            {
                "class": "mail",
                "entryId": self.entry_id(data),
                "subject": str(subject or ""),
                "senderName": sender[0][0] if sender else "",
                "senderAddress": sender[0][1] if sender else "",
                "to": "; ".join(display for display, _ in recipients),
                "receivedBy": recipients[0][0] if recipients else "",
                "sent": str(date or ""),
                "received": f"{date.datetime:%Y-%m-%d %H:%M}" if date and date.datetime else "",
                "body": with_crlf(body),
                "editor": 2 if html is not None else 1,
                "file": name,
            }
        )

    def add_contacts(self, name, data):
        try:
            text = data.decode("utf-8-sig")
        except UnicodeDecodeError:
            text = data.decode("latin-1")
            self.warn(f"{name}: not UTF-8, read as Latin-1")
        cards = list(vobject.readComponents(text))
        if not cards:
            raise Unusable("no card in it")
        for card in cards:
            self.add_card(name, card)

    def add_card(self, name, card):
        def field(key):
            return card.contents[key][0].value if key in card.contents else ""

        emails = sorted(
            card.contents.get("email", []),
            key=lambda e: "PREF" not in [value.upper() for values in e.params.values() for value in values],
        )
        person = field("n")
        organisation = field("org")
        company = organisation[0] if isinstance(organisation, list) and organisation else str(organisation or "")
        self.items.append(
            {
                "class": "contact",
                "entryId": self.entry_id(card.serialize(validate=False).encode("utf-8")),
                "firstName": getattr(person, "given", "") or "",
                "lastName": getattr(person, "family", "") or "",
                "fullName": str(field("fn") or ""),
                "company": company,
                "jobTitle": str(field("title") or ""),
                "email": emails[0].value if emails else "",
                "body": with_crlf(str(field("note") or "")),
                "file": name,
            }
        )


def main(arguments=None):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument(
        "folder", type=Path, help="searched with its subfolders; files are taken in order of their names"
    )
    parser.add_argument("store", type=Path, help="the JSON file to write")
    parser.add_argument("--name", default="Inbox", help="what Outlook's folder is called (default: Inbox)")
    options = parser.parse_args(arguments)
    if not options.folder.is_dir():
        parser.error(f"{options.folder} is not a folder")
    importer = Importer(lambda text: print(f"import_mail: {text}", file=sys.stderr))
    importer.add_folder(options.folder)
    store = {"folder": options.name, "items": importer.items}
    options.store.write_text(json.dumps(store, ensure_ascii=False, indent=1) + "\n", encoding="utf-8")
    print(f"import_mail: {len(importer.items)} items, {importer.skipped} files skipped", file=sys.stderr)
    return 0


if __name__ == "__main__":
    sys.exit(main())
