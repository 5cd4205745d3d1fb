"""What a soak knows: the items of the mailbox, and the document that each must become."""

import json
import os
import random
import re
import subprocess

import adapter as a

SHORTEST_BODY = 13  # characters; of shorter mails nothing is sent
LONGEST_BODY = 3072  # characters, as the setting MaxDocUnits has it
WORDS = "order plan & <draft> figures \"north\" ship 'x' print a on it budget spring hall contract twelve".split()
ODD = ["http://x.example/a?b=1", 'HYPERLINK "http://y.example/"', "--", "-----", "\\n", "\t", "https://z.example", '"']
# The passes are built with a sanitizer, which wants to be the first library; the emulation of 32 bits loads one, too.
PASSES_ENVIRONMENT = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}


def encoded(text):
    for character, entity in zip("&<>\"'", ("&amp;", "&lt;", "&gt;", "&quot;", "&apos;")):
        text = text.replace(character, entity)
    return text


class Item:
    """One item of the store, in every version that an edit has made of it."""

    def __init__(self, number, chance):
        self.number = number
        self.edits = 0
        self.bodies = [self._first_body(chance)]
        self.is_contact = number % 7 == 0
        if self.is_contact:
            self.fields = a.contact(number, "Ann", f"Lee {number}", chance.choice(["", "Lee & Co"]), "CFO")
            self.name = f"Ann Lee {number}"
        else:
            self.name = chance.choice(["RE: ", "Re: re:", "", "FW: "]) + f"Subject {number} & more"
            self.fields = a.mail(number, self.name, self.body)
        self.fields["body"] = self.body

    @staticmethod
    def _first_body(chance):
        # The middle of a mail decides whether it has changed, and a word there counts the edits.
        def lines():
            return [
                " ".join(chance.choice(ODD if chance.random() < 0.1 else WORDS) for _ in range(chance.randrange(12)))
                for _ in range(chance.randrange(1, 10))
            ]

        half = lines()
        return "\r\n".join([*half, "counted e0000 counted", *half[::-1], ""])

    @property
    def body(self):
        return self.bodies[-1]

    def edit(self):
        """Makes the next version, and gives the command that tells Outlook."""
        old, self.edits = f"e{self.edits:04}", self.edits + 1
        self.bodies.append(self.body.replace(old, f"e{self.edits:04}"))
        return f"edit {self.number} replace {old} e{self.edits:04}"

    def document(self, version, pieces, handle, doc_id, clicked):
        """The messages of this version's document from preamble to end."""
        rest = f'docId="{doc_id}" docPath="/" docName="{self.name}"'

        def text(emphasis, words):
            return f'<send_document emphasis="{emphasis}" doc="{encoded(words)}" {rest} />'

        common = f'refresh="true"  docId="{doc_id}"  docPath="/" docName="{self.name}" spanCnt="100"'
        end = f'<eod docId="{doc_id}" shouldProcess="1"/>'
        if self.is_contact:
            company, title, name = self.fields["company"], "CFO", self.name
            person = "".join(
                f' {key}="{encoded(value)}"'
                for key, value in (
                    ("firstname", "Ann"), ("lastname", self.fields["lastName"]), ("company", company),
                    ("position", title), ("email", self.fields["email"]),
                )
            )  # fmt: skip
            weighted = text("high", f"{name} ; {title} ; {company} ; " * 64)
            return [
                f'<pre_send_document type="contact" title="{name}"  id = "{handle}"  {common}  '
                f'buttonClicked="{clicked}" />',
                f"<person{person} {rest}/>",
                text("selected", ""),
                text("high", " ; ".join([name] * 3)),
                text("high", " ; ".join([company] * 3)),
                text("high", " ; ".join([f"{name} {company} ; "] * 3)),
                weighted,
                weighted,
                end,
            ]
        subject = re.split("RE:|Re:|re:", self.name)[-1]
        return [
            f'<pre_send_document title="{self.name}"  id="{handle}"  {common}  type="email"  sender="Bo Kim"  '
            f'recipient="Ann Lee"  buttonClicked="{clicked}" />',
            text("high", subject),
            *(
                text("medium" if piece.count(" ") >= 5 else "low", piece)
                for piece in pieces[version]
                if len(piece) >= 2
            ),
            end,
        ]


class Model:
    """The mailbox, and the judgement of what an engine was sent of it."""

    def __init__(self, seed, literal_passes, count=40):
        chance = random.Random(seed)
        self.items = [Item(number, chance) for number in range(1, count + 1)]
        self._by_name = {item.name: item for item in self.items}
        self._passes = literal_passes
        self._pieces = {}
        self.whole = self.cut_short = self.incomplete = 0

    def pieces(self, item):
        """What the literal passes make of each version of an item's body."""
        known = self._pieces.setdefault(item.number, [])
        fresh = [body[:LONGEST_BODY] for body in item.bodies[len(known) :]]
        if fresh:
            made = subprocess.check_output([self._passes], input=json.dumps(fresh), text=True, env=PASSES_ENVIRONMENT)
            known += json.loads(made)
        return known

    def judge(self, handle, messages, was_interrupted):
        """Checks one document that came with its end. Gives its item and version, or none when it was cut short."""
        doc_id = re.search(r' docId="([^"]*)"', messages[0]).group(1)
        item = self._by_name[re.search(r' docName="([^"]*)"', messages[0]).group(1)]
        clicked = messages[0][-5]
        assert doc_id.startswith(f"{handle};"), messages[0]
        versions = range(len(item.bodies))[:-4:-1]  # the newest first, for they differ in mails only
        candidates = [item.document(version, self.pieces(item), handle, doc_id, clicked) for version in versions]
        if messages in candidates:
            self.whole += 1
            return item, versions[candidates.index(messages)]
        if was_interrupted and any(
            messages[:-1] == expected[: len(messages) - 1] and messages[-1] == expected[-1] for expected in candidates
        ):
            self.cut_short += 1
            return None
        print("expected:", *candidates[0], "received:", *messages, sep="\n  ")
        raise AssertionError(f"item {item.number} was sent otherwise than it must be")
