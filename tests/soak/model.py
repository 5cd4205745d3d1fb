"""What a soak knows: the items of the mailbox, and the document that each became when nothing disturbed it."""

import random
import re

import adapter as a

WORDS = "order plan & <draft> figures \"north\" ship 'x' print a on it budget spring hall contract twelve".split()
ODD = ["http://x.example/a?b=1", 'HYPERLINK "http://y.example/"', "--", "-----", "\\n", "\t", "https://z.example", '"']
COUNTER = re.compile(r"\be(\d{4})\b")


class Item:
    """One item of the store. A word in the middle of its body, which decides whether it has changed, counts edits."""

    def __init__(self, number, chance):
        def lines():
            return [
                " ".join(chance.choice(ODD if chance.random() < 0.1 else WORDS) for _ in range(chance.randrange(12)))
                for _ in range(chance.randrange(1, 10))
            ]

        self.number = number
        self.edits = 0
        self.document = []  # without what differs from one sending to the next
        half = lines()
        body = "\r\n".join([*half, "counted e0000 counted", *half[::-1], ""])
        if number % 7 == 0:
            self.name = f"Ann Lee {number}"
            company = chance.choice(["", "Lee & Co"])
            self.fields = a.contact(number, "Ann", f"Lee {number}", company, "CFO", body=body)
        else:
            self.name = chance.choice(["RE: ", "Re: re:", "", "FW: "]) + f"Subject {number} & more"
            self.fields = a.mail(number, self.name, body)

    def edit(self):
        """Makes the next version, and gives the command that tells Outlook."""
        self.edits += 1
        return f"edit {self.number} replace e{self.edits - 1:04} e{self.edits:04}"

    def read(self, messages):
        """The document in the form in which it is compared, and its version: the newest when nothing tells."""
        shape = [re.sub('buttonClicked="."', "", COUNTER.sub("e", text)) for text in a.comparable(messages)]
        found = COUNTER.search("".join(text for _, text in a.texts(messages)))
        return shape, int(found.group(1)) if found else self.edits


class Model:
    """The mailbox, and the judgement of what an engine was sent of it."""

    def __init__(self, seed, count=40):
        chance = random.Random(seed)
        self.items = [Item(number, chance) for number in range(1, count + 1)]
        self._by_name = {item.name: item for item in self.items}
        self.whole = self.cut_short = self.incomplete = 0

    def judge(self, handle, messages, was_interrupted):
        """Checks one document that came with its end. Gives its item and version, or none when it was cut short."""
        assert f' docId="{handle};' in messages[0], messages[0]
        item = self._by_name[re.search(r' docName="([^"]*)"', messages[0]).group(1)]
        document, version = item.read(messages)
        assert item.edits - 3 < version <= item.edits, messages
        if document == item.document:
            self.whole += 1
            return item, version
        if was_interrupted and document == item.document[: len(document) - 1] + item.document[-1:]:
            self.cut_short += 1
            return None
        print("expected:", *item.document, "received:", *messages, sep="\n  ")
        raise AssertionError(f"item {item.number} was sent otherwise than before")
