#!/usr/bin/python3
"""Shows what a mailbox holds on the document that the stand-in engine has just received.

Standard input is the engine's --raw stream. Mails and contacts come from a store of import_mail.py and are found by
SQLite's full-text search: each word of a document is ranked by bm25, and weighs as much as the texts that it stands in.
"""

import argparse
import json
import re
import shutil
import sqlite3
import sys
import unicodedata
from collections import Counter

WEIGHTS = {"selected": 8, "high": 4, "medium": 2, "low": 1}
MOST_HITS = 5
# Before and after words that a hit shares with what the user selected, or with the rest of the document.
SELECTED, SHARED, PLAIN = "\x01", "\x02", "\x03"
LOOKS = {SELECTED: "\x1b[1;35m", SHARED: "\x1b[1m", PLAIN: "\x1b[m"}

# The attributes stand in this order. A subject is as its sender wrote it, and cannot know the handle; what it says of
# senders stands before the real one.
MAIL = '<pre_send_document title="(.*?)"  id="{0}"  refresh=.*"  sender="(.*)"  recipient="(.*)"  buttonClicked="'
CONTACT = '<pre_send_document type="contact" title="(.*?)"  id = "{0}"  refresh='
TEXT = re.compile('<send_document emphasis="(.*?)" doc="(.*?)" docId="')
ENTITIES = (("&lt;", "<"), ("&gt;", ">"), ("&quot;", '"'), ("&apos;", "'"), ("&amp;", "&"))


def words(text):
    return re.findall(r"\w{3,}", text.lower())


def plain(text):
    """Without what a terminal would obey."""
    return re.sub(r"[\x00-\x1f\x7f-\x9f]+", " ", text)


def quoted(word):
    return f'"{word}"'


class Document:
    """What the user looks at: title, sender of a mail, and its texts with their emphasis."""

    def __init__(self, title, sender=""):
        self.title = title
        self.sender = sender
        self.texts = [("high", sender)]

    def selection(self):
        return " ".join(text for emphasis, text in self.texts if emphasis == "selected" and text.strip())

    def weights(self):
        weights = Counter()
        for emphasis, text in self.texts:
            for word in words(text):
                weights[word] += WEIGHTS.get(emphasis, 0)
        return weights


class Stream:
    """Documents out of raw lines. One that is not complete gives way to the next one of its window."""

    def __init__(self):
        self.open = {}  # of each handle

    def feed(self, line):
        """The document that this line completes, if it does."""
        kind, _, rest = line.rstrip("\r\n").partition(" ")
        handle, _, message = rest.partition(" ")
        if kind != "message":
            return None
        message = plain(re.sub(r"\\(.)", lambda match: {"r": "\r", "n": "\n"}.get(match[1], match[1]), message))
        if message.startswith("<pre_send_document"):
            self.open[handle] = self.preamble(handle, message)
        elif message.startswith("<eod"):
            document = self.open.pop(handle, None)
            return document if message.endswith('shouldProcess="1"/>') else None
        elif message.startswith("<exit"):
            self.open.pop(handle, None)
        elif (text := TEXT.match(message)) and self.open.get(handle):
            decoded = text[2]
            for entity, character in ENTITIES:
                decoded = decoded.replace(entity, character)
            self.open[handle].texts.append((text[1], decoded))
        return None

    @staticmethod
    def preamble(handle, message):
        if mail := re.match(MAIL.format(handle), message):
            return Document(mail[1], mail[2])
        contact = re.match(CONTACT.format(handle), message)
        return Document(contact[1]) if contact else None


class Mailbox:
    """Items of a store in a full-text index."""

    def __init__(self, items):
        self.data = sqlite3.connect(":memory:")
        self.data.executescript(
            """
            CREATE VIRTUAL TABLE item USING fts5(title, people, body, tokenize='porter unicode61 remove_diacritics 2');
            CREATE TABLE term(word TEXT, weight REAL);
        """
        )
        for item in items:
            if item["class"] == "mail":
                row = item["subject"] or "No Subject", item["senderName"], item["body"]
            else:
                who = ", ".join(item[field] for field in ("jobTitle", "company") if item[field])
                row = item["fullName"] or "Unnamed Contact", who, item["body"]
            self.data.execute("INSERT INTO item VALUES (?, ?, ?)", [plain(text) for text in row])

    def find(self, document):
        """The items that fit best, best first, without the document's own: title, people, the place with the words in
        common (those selected, if it has any of them)."""
        weights = document.weights()
        telling = {word for word in weights if self.tells(word)}
        self.data.execute("DELETE FROM term")
        self.data.executemany("INSERT INTO term VALUES (?, ?)", [(quoted(word), weights[word]) for word in telling])
        found = self.data.execute(
            """
            SELECT id, title, people FROM
                (SELECT item.rowid AS id, title, people, term.weight * item.rank AS points
                 FROM term CROSS JOIN item ON item MATCH term.word)
            WHERE title <> ? OR (? <> '' AND people <> ?)
            GROUP BY id ORDER BY sum(points) LIMIT ?
        """,
            (document.title, document.sender, document.sender, MOST_HITS),
        ).fetchall()
        selected = telling & set(words(document.selection()))
        return [(title, people, self.place(id, (SELECTED, selected), (SHARED, telling))) for id, title, people in found]

    def tells(self, word):
        """Some items hold it, and not every fourth."""
        count = "SELECT count(*) FROM item"
        (held,) = self.data.execute(count + " WHERE item MATCH ?", (quoted(word),)).fetchone()
        return 0 < held <= self.data.execute(count).fetchone()[0] // 4

    def place(self, id, *choices):
        for mark, choice in choices:
            any_word = " OR ".join(map(quoted, sorted(choice)))
            row = (
                any_word
                and self.data.execute(
                    "SELECT snippet(item, 2, ?, ?, '…', 16) FROM item WHERE item MATCH ? AND rowid = ?",
                    (mark, PLAIN, any_word, id),
                ).fetchone()
            )
            if row:
                return " ".join(row[0].split())
        return ""


def fitted(text, width):
    """The text cut to so many columns; marks take none, characters of the Far East two."""
    used = 0
    for at, character in enumerate(text):
        if character not in LOOKS:
            used += 2 if unicodedata.east_asian_width(character) in "WF" else 1
        if used > width:
            marks = [character for character in text[:at] if character in LOOKS]
            return text[:at] + (PLAIN if marks and marks[-1] != PLAIN else "")
    return text


def view(document, hits):
    """Lines, with what is to stand out in marks."""
    yield f"{document.title} – {document.sender}" if document.sender else document.title
    if selection := " ".join(document.selection().split()):
        yield f"selected: {SELECTED}{selection}{PLAIN}"
    for number, (title, people, place) in enumerate(hits, 1):
        yield f"{number}  {title}" + (f" – {people}" if people else "")
        yield f"   {place}"
    if not hits:
        yield "nothing else in the mailbox"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("store", help="the mailbox, as written by import_mail.py")
    with open(parser.parse_args().store, encoding="utf-8") as file:
        mailbox = Mailbox(json.load(file)["items"])
    stream = Stream()
    screen = sys.stdout.isatty()
    sys.stdin.reconfigure(encoding="utf-8", errors="replace")
    for line in sys.stdin:
        document = stream.feed(line)
        if not document:
            continue
        width = shutil.get_terminal_size().columns
        lines = [fitted(text, width) for text in view(document, mailbox.find(document))]
        looks = LOOKS if screen else {SELECTED: "[", SHARED: "[", PLAIN: "]"}
        if screen:
            lines[0] = f"\x1b[H\x1b[J\x1b[7m{lines[0]}{PLAIN}"
        print("\n".join(lines).translate(str.maketrans(looks)), end="\n" if screen else "\n\n", flush=True)


if __name__ == "__main__":
    main()
