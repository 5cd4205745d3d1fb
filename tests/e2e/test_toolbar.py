"""The command bar and the engine."""

import re

import adapter as a
import beacon_harness as h

MARKER = "corvantis-beacon"


def start(machine, engine, outlook):
    return a.start(machine, engine, outlook, settings={"toolbar": "1"}, bars=machine.folder / "bars.txt")


def bars(mail):
    """The lines of the add-in's bar and of its controls in the window used last; empty without a bar."""
    mail.send("bars")
    mail.expect("^bars end")
    shown = "\n".join(mail.lines).rpartition("> bars\n")[2]
    found = re.search(r'^bar .*"Beacon Toolbar".*(\n(?!bars? ).*)*', shown, re.MULTILINE)
    return found[0].splitlines() if found else []


def installed(mail, handle, last=7):
    """Waits until the bar exists and is tagged for this window; returns the lines of its controls."""

    def tagged():
        found = bars(mail)
        return found[1:] if len(found) == 8 and f'tag="{MARKER} {handle};{last}"' in found[last] else None

    return h.wait_until(tagged, 10, "the bar of this window")


def test_the_bar_is_built_once_and_found_again_until_the_user_deletes_it(machine, engine, outlook):
    beacon, mail, handle = start(machine, engine, outlook)
    controls = installed(mail, handle)
    assert sum("face=16x16" in line for line in controls) == 6
    a.check_nothing_left(mail)

    again = outlook(store=machine.store([a.mail(1)]), bars=machine.folder / "bars.txt")
    second = beacon.connected("AppToEngine")
    installed(again, second)  # re-tagged for the new window
    assert len(again.matching('^bar .*"Beacon Toolbar"')) == len(again.matching("^bars end")), "a second bar"
    installed(again, a.open_item(again, beacon, 1))
    again.send("new explorer")
    again.send("activate explorer 2")
    installed(again, beacon.connected("AppToEngine"))
    assert "Exception in" not in machine.log(2)
    again.send('deletebar "Beacon Toolbar"')
    again.expect("^deleted the bar")
    a.check_nothing_left(again)
    unwanted = outlook(store=machine.store([a.mail(1)]), bars=machine.folder / "bars.txt")
    beacon.connected("AppToEngine")
    unwanted.send("wait 1500")
    a.settle(unwanted)
    assert not bars(unwanted)


def test_every_button_reaches_the_engine(machine, engine, outlook):
    beacon, mail, handle = start(machine, engine, outlook)
    installed(mail, handle)
    mail.send("select 1")
    a.document(beacon)

    for updating in ("Update", "Focus", "Refresh"):
        mail.send(f'press "{updating}"')
        beacon.expect("^# BeginCommand")
        beacon.expect(rf"^# CommandDone {handle}")
        messages, _ = a.document(beacon)
        assert 'docName="One"' in messages[0] and 'buttonClicked="1"' in messages[0]

    mail.send('context type "spring campaign"')
    h.wait_until(lambda: 'text="spring campaign"' in bars(mail)[3], 10, "the typed context")
    mail.send('press "New Search"')
    beacon.expect(rf"^# NewSearch {handle} spring campaign")
    beacon.expect(rf"^# CommandDone {handle}")
    mail.send('press "Search in Context"')  # the context goes with the selection
    beacon.expect("^# BeginCommand")
    messages, _ = a.document(beacon)
    assert ("selected", " spring campaign") in a.texts(messages)
