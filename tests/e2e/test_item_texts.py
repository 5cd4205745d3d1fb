"""Long, hanging and missing texts of item windows, and what Outlook 2000 shows where MAPI gives nothing."""

import pytest

import adapter as a

def test_a_selection_of_100000_characters_arrives_whole(machine, engine, outlook):
    text = "".join(f"line {n:05} of the long text\r\n" for n in range(3600))
    a.prepare(machine)
    beacon = engine()
    mail = outlook(store=machine.store([a.mail(1, "Long", text)]), outlook_version=11)
    explorer = beacon.connected("AppToEngine")
    mail.send("open 1")
    inspector = beacon.connected("AppToEngine")
    a.document(beacon)
    mail.send("select text all")
    mail.expect(f"^selection {len(text)}")
    beacon.send(f"button_click 1 {inspector}")
    [whole] = a.selected(a.document(beacon, 30)[0])
    assert whole.replace("\r", "") == text.replace("\r\n", "")
    assert explorer != inspector
    a.check_nothing_left(mail)


def test_a_viewer_that_hangs_or_has_no_document_costs_only_the_selection(machine, engine, outlook):
    a.prepare(machine)
    beacon = engine()
    mail = outlook(store=machine.store(a.editor_mails()), outlook_version=11)
    beacon.connected("AppToEngine")
    mail.send(f"open {a.HTML}")
    inspector = beacon.connected("AppToEngine")
    a.document(beacon)
    for trouble in ("hang 4000", "document off"):
        mail.send('select text "marked part"')
        mail.expect("^selection 11")
        mail.send(trouble)
        mail.send("say troubled")
        mail.expect("^say troubled")
        beacon.send(f"button_click 1 {inspector}")
        messages, _ = a.document(beacon, 15)
        assert not a.selected(messages) and len(a.texts(messages)) >= 2
        mail.send("wait 4000" if "hang" in trouble else "document on")
    assert machine.log(2).count("GetSelectedEx(7) WindowDOM(hWnd) returned nothing") == 2
    mail.send('select text "marked part"')
    mail.send("say well again")
    mail.expect("^say well again")
    beacon.send(f"button_click 1 {inspector}")
    assert a.selected(a.document(beacon)[0]) == ["marked part"]
    a.check_nothing_left(mail)


@pytest.mark.parametrize("version", [9, 10])
def test_outlook_2000_reads_the_window_where_mapi_gives_nothing(machine, engine, outlook, version):
    a.prepare(machine)
    beacon = engine()
    mail = outlook(store=machine.store(a.editor_mails()), outlook_version=version)
    beacon.connected("AppToEngine")
    for editor in (a.PLAIN, a.HTML, a.RICH, a.WORD):
        mail.send(f"item {editor} no-mapi")
        mail.send(f"open {editor}")
        beacon.connected("AppToEngine")
        if version == 9:
            messages, _ = a.document(beacon)
            assert f'docName="Editor {editor}"' in messages[0], editor
            assert ' sender="Bo Kim"  recipient="Ann Lee" ' in messages[0], editor
            lines = [f"Editor {editor}", *a.EDITOR_BODY.splitlines()]
            assert [text.strip() for _, text in a.texts(messages)] == lines, editor
        else:
            beacon.expect_nothing("<pre_send_document", 4 * a.DELAY / 1000)  # an empty body stays empty
        mail.send(f"close {editor}")
        mail.expect("^closed inspector")
    a.check_nothing_left(mail)
