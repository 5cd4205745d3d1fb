#!/usr/bin/python3
"""A window that shows what else the mailbox contains about the item in front of the stand-in Outlook.

It follows the output of the stand-in engine (--raw) and of the stand-in Outlook. A line "# ended" says that the program
has exited.
"""

import argparse
import json
import re
import tkinter
from tkinter import font

from related import PLAIN, SELECTED, SHARED, Mailbox, Stream

POLL = 50  # milliseconds


class Panel:
    """What is shown: the document of the window in front, its hits, and the state of the engine."""

    def __init__(self, mailbox):
        self.mailbox = mailbox
        self.stream = Stream()
        self.found = {}  # document and hits by window handle
        self.front = None
        self.status = "The engine is starting."

    def engine_says(self, line):
        document = self.stream.feed(line)
        handle = line.partition(" ")[2].partition(" ")[0]
        if document:
            self.found[handle] = document, self.mailbox.find(document)
            self.status = "The engine is ready."
        elif line.startswith("message ") and "<pre_send_document" in line:
            self.status = "The engine is receiving an item."
        elif line.startswith(("# ready", "# goes on")):
            self.status = "The engine is ready."
        elif line.startswith("# hangs"):
            self.status = "The engine is busy."
        elif search := re.match(r"# NewSearch \S+ (.*)", line):
            self.status = f"New search: {search[1]}"
        elif line.startswith("# ended"):
            self.status = "The engine is not running."
            self.found.clear()

    def outlook_says(self, line):
        if window := re.match(r"event Activate \w+ \d+ handle=(-?\d+)", line):
            self.front = window[1]
        elif window := re.match(r"closed \w+ \d+ handle=(-?\d+)", line):
            self.found.pop(window[1], None)

    def parts(self):
        """Texts and the names of their styles."""
        document, hits = self.found.get(self.front, (None, []))
        if not document:
            yield "Select a mail or contact in Outlook.\n", "small"
            return
        yield f"{document.title}\n", "title"
        yield f"{document.sender}\n" if document.sender else "", "small"
        if selection := " ".join(document.selection().split()):
            yield f"selected: {selection}\n", SELECTED
        for hit, excerpt in hits:
            yield f"\n{hit.title}\n", "hit"
            yield " · ".join(part for part in (hit.people, hit.date) if part) + "\n", "small"
            style = PLAIN
            for piece in re.split(f"([{SELECTED}{SHARED}{PLAIN}])", excerpt or "(no text)"):
                style = piece if piece in (SELECTED, SHARED, PLAIN) and piece else style
                yield piece.strip(SELECTED + SHARED + PLAIN), style
            yield "\n", PLAIN
        if not hits:
            yield "\nNothing else in the mailbox.\n", "small"


class Window:
    """Shows a panel. The title of the window names the document: "Related: TITLE"."""

    def __init__(self, panel, geometry):
        self.panel = panel
        self.shown = None
        self.root = tkinter.Tk(className="beacon-panel")
        self.root.geometry(geometry)
        size = font.nametofont("TkDefaultFont").actual("size")
        self.text = tkinter.Text(self.root, wrap="word", padx=12, pady=8, relief="flat", font=("DejaVu Sans", size))
        self.text.tag_configure("title", font=("DejaVu Sans", size + 3, "bold"))
        self.text.tag_configure("hit", font=("DejaVu Sans", size, "bold"))
        self.text.tag_configure("small", foreground="#666")
        self.text.tag_configure(SHARED, background="#fff0a8")
        self.text.tag_configure(SELECTED, foreground="#a000a0", background="#f6e6ff")
        self.status = tkinter.Label(self.root, anchor="w", padx=12, pady=6)
        self.status.pack(side="bottom", fill="x")
        self.text.pack(expand=True, fill="both")

    def show(self):
        parts = [part for part in self.panel.parts() if part[0]]
        self.status["text"] = self.panel.status
        if parts == self.shown:
            return
        self.shown = parts
        self.root.title("Related: " + parts[0][0].strip())
        self.text["state"] = "normal"
        self.text.delete("1.0", "end")
        for text, style in parts:
            self.text.insert("end", text, style)
        self.text["state"] = "disabled"


def follow(window, file, take, line=""):
    """Gives `take` the complete lines that the file has now, and looks again later."""
    for part in file:
        line += part
        if line.endswith("\n"):
            take(line.rstrip("\r\n"))
            line = ""
    window.show()
    window.root.after(POLL, follow, window, file, take, line)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("store", help="the mailbox, as written by import_mail.py")
    parser.add_argument("engine", help="the output of standin_engine --raw, which may still grow")
    parser.add_argument("outlook", help="the output of standin_outlook, likewise")
    parser.add_argument("--geometry", default="440x640", help="size and place, as WIDTHxHEIGHT+X+Y")
    options = parser.parse_args()
    with open(options.store, encoding="utf-8") as file:
        panel = Panel(Mailbox(json.load(file)["items"]))
    window = Window(panel, options.geometry)
    for name, take in (options.outlook, panel.outlook_says), (options.engine, panel.engine_says):
        follow(window, open(name, encoding="utf-8", errors="replace"), take)
    window.root.mainloop()


if __name__ == "__main__":
    main()
