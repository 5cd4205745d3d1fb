#!/usr/bin/python3
"""Shows what else a mailbox contains about the document that the stand-in engine has just received.

Standard input is the engine's --raw stream. Mails and contacts come from a store of import_mail.py. They are ranked by
bm25, the words of the document weighted by the emphasis of the texts that they come from.
"""

import argparse
import json
import math
import re
import shutil
import sys
import unicodedata
from array import array
from collections import Counter, defaultdict
from email.utils import parsedate_to_datetime

WEIGHTS = {"selected": 8, "high": 4, "medium": 2, "low": 1}
CHARACTERS = 3072  # of a body; the adapter reads no more either (MaxDocUnits)
MAX_HITS = 5
MAX_TERMS = 30  # of a document, which bounds the time of a search
MAX_MARKS = 3
EXCERPT = 90  # characters
# Start and end of a word that a hit shares with the user's selection or with the rest of the document.
SELECTED, SHARED, PLAIN = "\x01", "\x02", "\x03"
LOOKS = {SELECTED: "\x1b[1;35m", SHARED: "\x1b[1m", PLAIN: "\x1b[m"}

# The order of the attributes is fixed. The subject comes from the sender of the mail, who does not know the handle;
# a forged sender inside it precedes the real one.
MAIL = '<pre_send_document title="(.*?)"  id="{0}"  refresh=.*"  sender="(.*)"  recipient="(.*)"  buttonClicked="'
CONTACT = '<pre_send_document type="contact" title="(.*?)"  id = "{0}"  refresh='
TEXT = re.compile('<send_document emphasis="(.*?)" doc="(.*?)" docId="')
ENTITIES = (("&lt;", "<"), ("&gt;", ">"), ("&quot;", '"'), ("&apos;", "'"), ("&amp;", "&"))

# Chinese, Japanese and Korean do not separate words (or not in a way that helps): their runs become overlapping pairs.
EAST = "\u3040-\u30ff\u3400-\u4dbf\u4e00-\u9fff\uac00-\ud7af\uf900-\ufaff"
RUN = re.compile(rf"([{EAST}]+)|[^\W{EAST}]{{3,}}")
REPLY = re.compile(r"^(\s*(re|aw|sv|fw|fwd|wg|tr)\s*(\[\d+\])?\s*:)+", re.IGNORECASE)


def terms(text):
    """Start, end and search term of each word or pair."""
    for run in RUN.finditer(text):
        start, end = run.span()
        if run[1]:
            for at in range(start, max(end - 1, start + 1)):
                yield at, min(at + 2, end), text[at : at + 2] if at + 2 <= end else run[1]
        else:
            word = run[0].casefold()
            if not word.isascii():
                word = "".join(c for c in unicodedata.normalize("NFKD", word) if not unicodedata.combining(c))
            yield start, end, word[:-1] if word.endswith("s") else word


def words(text):
    return [term for _, _, term in terms(text)]


def plain(text):
    """The text without characters that control a terminal."""
    return re.sub(r"[\x00-\x1f\x7f-\x9f]+", " ", text)


def thread(title):
    return " ".join(REPLY.sub("", title).casefold().split())[:200]


class Document:
    """What the user looks at: title, sender of a mail, and texts with their emphasis."""

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
    """Assembles documents from raw lines. A new document replaces an incomplete one of its window."""

    def __init__(self):
        self.open = {}  # by handle

    def feed(self, line):
        """The document that this line completes, or None."""
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


class Hit:
    """An item of the mailbox: title, people, date ("" for contacts) and the beginning of its text."""

    def __init__(self, item):
        if item["class"] == "mail":
            title, people, self.date = item["subject"] or "No Subject", item["senderName"], day(item.get("sent", ""))
        else:
            people = ", ".join(item[field] for field in ("jobTitle", "company") if item[field])
            title, self.date = item["fullName"] or "Unnamed Contact", ""
        self.title, self.people, self.text = map(plain, (title, people, item["body"][:CHARACTERS]))
        self.thread = thread(self.title)

    def heading(self):
        return " – ".join(part for part in (self.title, self.people, self.date) if part)

    def excerpt(self, mark, marked):
        """The part of the text with most of these terms, which are marked in it."""
        places = [place for place in terms(self.text) if place[2] in marked]
        start = max(
            (start for start, *_ in places[:50]),
            default=0,
            key=lambda first: len({term for start, _, term in places if first <= start < first + EXCERPT}),
        )
        begin = self.text.rfind(" ", 0, max(start - EXCERPT // 6, 0)) + 1 if start > EXCERPT // 3 else 0
        finish = begin + EXCERPT
        covered = {at for start, end, _ in places for at in range(start, end)}
        text = "…" if begin else ""
        for at, character in enumerate(self.text[begin:finish], begin):
            text += mark * (at in covered and at - 1 not in covered) + character
            text += PLAIN * (at in covered and (at + 1 not in covered or at + 1 == finish))
        return " ".join((text + "…" * (finish < len(self.text))).split())


def day(sent):
    try:
        return parsedate_to_datetime(sent).date().isoformat()
    except (TypeError, ValueError, IndexError):
        return plain(sent)[:16]


class Mailbox:
    """An inverted index of the items of a store."""

    def __init__(self, items):
        self.items = [Hit(item) for item in items]
        self.postings = defaultdict(lambda: (array("I"), array("I")))  # by term: items, frequencies
        self.lengths = []
        for number, item in enumerate(self.items):
            counts = Counter(words(f"{item.title} {item.people} {item.text}"))
            self.lengths.append(sum(counts.values()))
            for term, count in counts.items():
                numbers, frequencies = self.postings[term]
                numbers.append(number)
                frequencies.append(count)
        self.average = sum(self.lengths) / max(len(self.lengths), 1)

    def find(self, document):
        """The best hits, best first, one for each thread and without the document itself, each with its excerpt."""
        telling = self.telling(document.weights())
        points = Counter()
        for term, weight in telling.items():
            for number, frequency in zip(*self.postings[term]):
                saturation = frequency + 1.2 * (0.25 + 0.75 * self.lengths[number] / self.average)
                points[number] += weight * frequency / saturation
        itself = self.itself(document)
        hits = {}
        for number, _ in points.most_common():
            hit = self.items[number]
            if number not in itself and len(hits) < MAX_HITS:
                hits.setdefault(hit.thread, hit)
        chosen = set(words(document.selection()))
        return [(hit, self.excerpt(hit, telling, chosen)) for hit in hits.values()]

    def telling(self, weights):
        """The most telling terms and their weights. A term of more than every fourth item tells nothing."""
        count = len(self.items)
        weighted = {}
        for term, weight in weights.items():
            found = len(self.postings[term][0]) if term in self.postings else 0
            if 0 < found <= max(count // 4, 3):
                weighted[term] = weight * math.log(1 + (count - found + 0.5) / (found + 0.5))
        return dict(Counter(weighted).most_common(MAX_TERMS))

    def itself(self, document):
        """The items that are the document or exact copies of it: of those with its title and sender, the most alike."""
        own = set(document.weights())
        like = [
            number
            for number, item in enumerate(self.items)
            if item.title[:200] == document.title[:200] and (not document.sender or item.people == document.sender)
        ]
        best = max(like, default=None, key=lambda number: len(own & set(words(self.items[number].text))))
        return {number for number in like if self.items[number].text == self.items[best].text}

    @staticmethod
    def excerpt(hit, telling, chosen):
        found = set(words(hit.text))
        shared = [term for term in telling if term in found]  # the most telling first
        selected = [term for term in shared if term in chosen]
        return hit.excerpt(SELECTED if selected else SHARED, (selected or shared)[:MAX_MARKS])


def fitted(text, width):
    """The text cut to a number of columns. Marks have no width, East Asian characters two columns."""
    used = 0
    for at, character in enumerate(text):
        if character not in LOOKS:
            used += 2 if unicodedata.east_asian_width(character) in "WF" else 1
        if used > width:
            marks = [character for character in text[:at] if character in LOOKS]
            return text[:at] + (PLAIN if marks and marks[-1] != PLAIN else "")
    return text


def view(document, hits):
    """Lines with marks."""
    yield f"{document.title} – {document.sender}" if document.sender else document.title
    if selection := " ".join(document.selection().split()):
        yield f"selected: {SELECTED}{selection}{PLAIN}"
    for number, (hit, excerpt) in enumerate(hits, 1):
        yield f"{number}  {hit.heading()}"
        yield f"   {excerpt or '(no text)'}"
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
