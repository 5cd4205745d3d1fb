"""Item windows: followed from their first activation to their end."""

import re

import adapter as a


def test_an_item_in_an_explorer_and_in_its_window(machine, engine, outlook):
    items = [a.mail(1, body=a.EDITOR_BODY), a.contact(2, body=a.EDITOR_BODY)]
    beacon, mail, explorer = a.start(machine, engine, outlook, items)
    for item, name in ((1, "Lunch on Friday"), (2, "Ann Lee")):
        mail.send(f"select {item}")
        messages, doc_id = a.document(beacon)
        assert doc_id.startswith(f"{explorer};")
        inspector = a.open_item(mail, beacon, item)
        messages, doc_id = a.document(beacon)
        assert doc_id.startswith(f"{inspector};") and f'docName="{name}"' in messages[0]
        mail.send("prop?")
        marks = dict(re.findall(r"(\d+)=(0x\w+)", mail.expect("^PROP_OLK:").string))
        assert set(marks) == {str(explorer), str(inspector)} and len(set(marks.values())) == 2, marks
        messages, _ = a.send_marked(mail, beacon, inspector)
        assert f'docName="{name}"' in messages[0] and 'buttonClicked="1"' in messages[0]
        assert a.selected(messages) == ["marked part"]
        mail.send(f"close {item}")
        beacon.expect(rf'^message {inspector} <exit id="{inspector}"/>')
    mail.send("references")
    assert "Inspector" not in mail.expect("^references:").string.replace("Inspectors", "")


def test_an_item_that_is_deleted(machine, engine, outlook):
    for version in (9, 11):
        beacon, mail, _ = a.start(
            machine, engine, outlook, [a.mail(1), a.mail(2), a.contact(3)], outlook_version=version
        )
        for item in (3, 1):
            inspector = a.open_item(mail, beacon, item)
            a.document(beacon)
            mail.send(f"delete {item}")
            beacon.expect(rf'^message {inspector} <exit id="{inspector}"/>')
        a.check_nothing_left(mail)
        beacon.kill()
    assert "myContactItem_BeforeDelete Closing objInspector" in machine.log(2)


def test_unsupported_items_are_left_alone(machine, engine, outlook):
    classes = {"appointment": 26, "note": 44, "task": 48}
    items = [{"class": kind, "entryId": kind, "subject": f"The {kind}", "body": a.LONG} for kind in classes]
    beacon, mail, _ = a.start(machine, engine, outlook, items)

    def looked_at():
        mail.send(f"wait {2 * a.DELAY}")
        a.settle(mail)
        return [machine.log(2).count(f"- Unsupported Item: Class={number}") for number in classes.values()]

    for n in (1, 2, 3):
        mail.send(f"select {n}")
        mail.send(f"open {n}")
        mail.send("activate explorer")
        mail.send(f"activate {n}")
    before = looked_at()
    assert all(before)
    mail.send("close 3")
    mail.send("activate 1")
    assert looked_at() == [before[0] + 1, *before[1:]], "the older window is no longer followed"
    assert not beacon.matching("<pre_send_document") and len(beacon.matching("# connected AppToEngine")) == 1


def test_started_with_an_item_only(machine, engine, outlook):
    beacon, mail, handle = a.start(machine, engine, outlook, [a.mail(1)], item_only="1")
    assert a.document(beacon)[1].startswith(f"{handle};")
