"""Windows, from their first activation to their end."""

import adapter as a


def test_an_item_in_two_explorers_and_in_its_window(machine, engine, outlook):
    items = [a.mail(1, body=a.EDITOR_BODY), a.contact(2, body=a.EDITOR_BODY)]
    beacon, mail, explorer = a.start(machine, engine, outlook, items)
    for item, name in ((1, "Lunch on Friday"), (2, "Ann Lee")):
        mail.send(f"select {item}")
        messages, doc_id = a.document(beacon)
        assert doc_id.startswith(f"{explorer};")
        inspector = a.open_item(mail, beacon, item)
        messages, doc_id = a.document(beacon)
        assert doc_id.startswith(f"{inspector};") and f'docName="{name}"' in messages[0]
        messages, _ = a.send_marked(mail, beacon, inspector)
        assert f'docName="{name}"' in messages[0] and 'buttonClicked="1"' in messages[0]
        assert a.selected(messages) == ["marked part"]
        mail.send(f"close {item}")
        beacon.expect(rf'^message {inspector} <exit id="{inspector}"/>')
    mail.send("references")
    assert "Inspector" not in mail.expect("^references:").string.replace("Inspectors", "")
    mail.send("new explorer")
    mail.send("activate explorer 2")
    second = beacon.connected("AppToEngine")
    mail.send("select 1")
    assert a.document(beacon)[1].startswith(f"{second};")
    mail.send("close explorer 2")
    beacon.expect(rf'^message {second} <exit id="{second}"/>')
    mail.send("activate explorer 1")
    mail.send("select 1")
    assert a.document(beacon)[1].startswith(f"{explorer};")


def test_an_item_that_is_deleted(machine, engine, outlook):
    for version in (9, 11):
        beacon, mail, _ = a.start(machine, engine, outlook, [a.mail(1), a.contact(2)], outlook_version=version)
        for item in (2, 1):
            inspector = a.open_item(mail, beacon, item)
            a.document(beacon)
            mail.send(f"delete {item}")
            beacon.expect(rf'^message {inspector} <exit id="{inspector}"/>')
        a.check_nothing_left(mail)
        beacon.kill()
    assert "myContactItem_BeforeDelete Closing objInspector" in machine.log(2)


def test_started_with_an_item_only(machine, engine, outlook):
    beacon, mail, handle = a.start(machine, engine, outlook, [a.mail(1)], item_only="1")
    assert a.document(beacon)[1].startswith(f"{handle};")
