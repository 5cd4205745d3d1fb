"""Shared by the end-to-end tests: settings, items, and documents as the engine receives them."""

import re

import beacon_harness as h

DELAY = 200  # ms, the adapter's StartAnalysisDelay in most tests


def prepare(machine, delay=DELAY, auto_update="True", toolbar=None, **values):
    """Registers the add-in, turns on logging, and writes its settings."""
    user = {"DefaultAutoUpdate": auto_update, **({} if toolbar is None else {"EnableToolbar": toolbar})}
    machine.install(user, {"Logging": 1, "StartAnalysisDelay": str(delay), **values})


def mail(number, subject="Lunch on Friday", body="Shall we meet at the usual place on Friday?\r\n", **fields):
    return {
        "class": "mail", "entryId": f"M{number:04}", "subject": subject, "body": body,
        "senderName": "Bo Kim", "senderAddress": "bo@example.org", "to": "Ann Lee", "receivedBy": "Ann Lee", **fields,
    }  # fmt: skip


def contact(number, first="Ann", last="Lee", company="Lee & Co", title="CFO", email="ann.lee@example.org", body=""):
    return {
        "class": "contact", "entryId": f"C{number:04}", "firstName": first, "lastName": last,
        "fullName": f"{first} {last}", "company": company, "jobTitle": title, "email": email, "body": body,
    }  # fmt: skip


EDITOR_BODY = "The first sentence of the mail is here.\r\nThe second one has a marked part in it.\r\n"


def selected(messages):
    return [text for emphasis, text in texts(messages) if emphasis == "selected"]


def start(machine, engine, outlook, items=None, settings=None, **options):
    """Starts engine and Outlook; returns both and the handle of the first window once it is connected."""
    prepare(machine, **(settings or {}))
    beacon = engine(toolbar=True, state=3) if "toolbar" in (settings or {}) else engine()
    program = outlook(store=machine.store(items or [mail(1, "One"), mail(2, "Two"), mail(3, "Three")]), **options)
    return beacon, program, beacon.connected("AppToEngine")


def document(engine, timeout=10):
    """Waits for the next document; returns its messages, from preamble to end, and its id."""
    first = engine.message("<pre_send_document", timeout)
    doc_id = re.search(r' docId="([^"]*)"', first).group(1)
    messages = [first]
    while not messages[-1].startswith("<eod "):
        messages.append(engine.message("", timeout))
    assert [message for message in messages if f' docId="{doc_id}"' not in message] == []
    return messages, doc_id


def texts(messages):
    """Emphasis and text of each text message."""
    found = (re.match(r'<send_document emphasis="(\w+)" doc="([^"]*)"', text) for text in messages)
    return [match.groups() for match in found if match]


def comparable(messages):
    """The messages without window handle and time, which differ from run to run."""
    return [re.sub(r'"-?\d+(;[^"]*);-?\d+"', r'"H\1;T"', re.sub(r'( id ?= ?)"\d+"', r'\1"H"', m)) for m in messages]


def titles(engine):
    """The names of all documents that the engine has received so far."""
    return re.findall(r'<pre_send_document .* docName="([^"]*)"', "\n".join(engine.lines))


def open_item(outlook, engine, item):
    """Opens the window of an item; returns its handle once it is connected."""
    outlook.send(f"open {item}")
    return engine.connected("AppToEngine", 30)


def settle(outlook):
    """Waits until Outlook has carried out all commands."""
    outlook.send("say settled")
    outlook.expect("^say settled", 20)


def send_marked(outlook, engine, window):
    """Selects text in the window in front and requests a send; returns messages and document id."""
    outlook.send('select text "marked part"')
    outlook.expect("^selection 11")
    engine.send(f"button_click 1 {window}")
    return document(engine, 15)


def check_nothing_left(outlook, command="quit"):
    """Quits Outlook and checks that the add-in has released everything."""
    outlook.send(command)
    assert outlook.wait() == 0
    for line in ("references: none", "sinks: none", "PROP_OLK: none", f"windows of {h.PROG_ID}: none"):
        assert line in outlook.lines, line
    assert outlook.matching("^DllCanUnloadNow: S_OK"), "the DLL could not be unloaded"
    assert not outlook.matching("wrong apartment"), "another thread than Outlook's has called the engine"
