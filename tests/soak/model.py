"""The items of a soak's mailbox, and the texts that the engine must receive of each."""

import random
import re
from xml.sax.saxutils import escape

import adapter as a

WORDS = "order plan & <draft> figures \"north\" ship 'x' print a on it budget spring hall contract twelve".split()


class Item:
    """One item, in every version that an edit has made of it."""

    def __init__(self, number, chance):
        self.number = number
        self.is_contact = number % 7 == 0
        # The middle of a mail decides whether it has changed. The word there counts the edits.
        half = [" ".join(chance.choices(WORDS, k=chance.randrange(12))) for _ in range(chance.randrange(1, 10))]
        self.bodies = ["\r\n".join([*half, "counted e0000 counted", *half[::-1], ""])]
        if self.is_contact:
            self.fields = a.contact(number, "Ann", f"Lee {number}", chance.choice(["", "Lee & Co"]), "CFO")
            self.name = self.fields["fullName"]
        else:
            self.subject = f" Subject {number} & more"
            self.name = chance.choice(["RE:", "Re: re:", ""]) + self.subject
            self.fields = a.mail(number, self.name)
        self.fields["body"] = self.bodies[0]

    @property
    def newest(self):
        return len(self.bodies) - 1

    def edit(self):
        """Makes the next version and returns the command that tells Outlook."""
        old, new = f"e{self.newest:04}", f"e{self.newest + 1:04}"
        self.bodies.append(self.bodies[-1].replace(old, new))
        return f"edit {self.number} replace {old} {new}"

    def texts(self, version):
        """Emphasis and text of this version's messages."""
        if self.is_contact:
            company, name = self.fields["company"], self.name
            names, companies = (" ; ".join([text] * 3) for text in (name, company))
            both = " ; ".join([f"{name} {company} ; "] * 3)
            weighted = f"{name} ; CFO ; {company} ; " * 64
            texts = [("selected", "")] + [("high", text) for text in (names, companies, both, weighted, weighted)]
        else:
            pieces = [piece.strip(" ") for piece in self.bodies[version].split("\r")]
            pieces = [piece for piece in pieces if len(piece) >= 2]
            texts = [("medium" if piece.count(" ") >= 5 else "low", piece) for piece in pieces]
            texts.insert(0, ("high", self.subject))
        return [(emphasis, escape(text, {'"': "&quot;", "'": "&apos;"})) for emphasis, text in texts]


class Model:
    """The mailbox, and the check of the documents that an engine received."""

    def __init__(self, seed, count=40):
        chance = random.Random(seed)
        self.items = [Item(number, chance) for number in range(1, count + 1)]
        self._by_name = {item.name: item for item in self.items}
        self.whole = self.cut_short = self.incomplete = 0

    def judge(self, handle, messages, was_interrupted):
        """Checks one document that came with its end. Returns its item and version, or None if it was cut short."""
        assert re.search(r' docId="([^;"]*);', messages[0])[1] == handle, messages[0]
        item = self._by_name[re.search(r' docName="([^"]*)"', messages[0])[1]]
        received = a.texts(messages)
        versions = range(item.newest, max(-1, item.newest - 3), -1)
        for version in versions:
            if received == item.texts(version):
                self.whole += 1
                return item, version
        if was_interrupted and any(received == item.texts(version)[: len(received)] for version in versions):
            self.cut_short += 1
            return None
        print("expected:", *item.texts(item.newest), "received:", *received, sep="\n  ")
        raise AssertionError(f"item {item.number} did not arrive as it is")
