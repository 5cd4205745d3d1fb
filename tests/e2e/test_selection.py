"""What the user has marked arrives as "selected", whatever window it is marked in."""

import pytest

import adapter as a

BODY = "The first sentence of the mail is here.\r\nThe second one has a marked part in it.\r\n"
HTML = "<html><body><p>The first sentence of the mail is here.</p><p>The second one has a marked part in it.</p></body></html>"
PLAIN, HTML_EDITOR, RICH, WORD = 1, 2, 3, 4


def mails():
    return [
        a.mail(editor, f"Editor {editor}", BODY, editor=editor, **({"html": HTML} if editor == HTML_EDITOR else {}))
        for editor in (PLAIN, HTML_EDITOR, RICH, WORD)
    ]


def selected(messages):
    return [text for emphasis, text in a.texts(messages) if emphasis == "selected"]


# Word's own window does not tell its selection; an explorer up to Outlook 2003 shows a Word item as HTML.
READABLE = {
    "explorer": {9: {1, 2, 3, 4}, 10: {1, 2, 3, 4}, 11: {1, 2, 3, 4}, 12: set()},
    "inspector": {9: {1, 2, 3}, 10: {1, 2, 3}, 11: {1, 2, 3}, 12: set()},
}


@pytest.mark.parametrize("version", [9, 10, 11, 12])
def test_selected_text_by_version_and_editor(machine, engine, outlook, version):
    a.prepare(machine)
    beacon = engine()
    mail = outlook(store=machine.store(mails()), outlook_version=version)
    explorer = beacon.connected("AppToEngine")
    found = {"explorer": set(), "inspector": set()}
    for editor in (PLAIN, HTML_EDITOR, RICH, WORD):
        mail.send(f"select {editor}")
        assert not selected(a.document(beacon)[0])
        mail.send('select text "marked part"')
        mail.expect("^selection 11")
        beacon.send(f"button_click 1 {explorer}")
        messages, doc_id = a.document(beacon)
        assert doc_id.startswith(f"{explorer};")
        if selected(messages) == ["marked part"]:
            found["explorer"].add(editor)
        else:
            assert not selected(messages)

        mail.send(f"open {editor}")
        inspector = beacon.connected("AppToEngine")
        assert not selected(a.document(beacon)[0])
        mail.send('select text "marked part"')
        mail.expect("^selection 11")
        beacon.send(f"button_click 1 {inspector}")
        messages, doc_id = a.document(beacon)
        assert doc_id.startswith(f"{inspector};")
        if selected(messages) == ["marked part"]:
            found["inspector"].add(editor)
        else:
            assert not selected(messages)
        mail.send(f"close {editor}")
        mail.expect("^closed inspector")
    assert found == {kind: versions[version] for kind, versions in READABLE.items()}
    a.check_nothing_left(mail)


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
    [whole] = selected(a.document(beacon, 30)[0])
    assert whole.replace("\r", "") == text.replace("\r\n", "")
    assert explorer != inspector
    a.check_nothing_left(mail)


def test_a_viewer_that_hangs_or_has_no_document_costs_only_the_selection(machine, engine, outlook):
    a.prepare(machine)
    beacon = engine()
    mail = outlook(store=machine.store(mails()), outlook_version=11)
    beacon.connected("AppToEngine")
    mail.send(f"open {HTML_EDITOR}")
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
        assert not selected(messages) and len(a.texts(messages)) >= 2
        mail.send("wait 4000" if "hang" in trouble else "document on")
    assert machine.log(2).count("GetSelectedEx(7) WindowDOM(hWnd) returned nothing") == 2
    mail.send('select text "marked part"')
    mail.send("say well again")
    mail.expect("^say well again")
    beacon.send(f"button_click 1 {inspector}")
    assert selected(a.document(beacon)[0]) == ["marked part"]
    a.check_nothing_left(mail)


@pytest.mark.parametrize("version", [9, 10])
def test_outlook_2000_reads_the_window_where_mapi_gives_nothing(machine, engine, outlook, version):
    a.prepare(machine)
    beacon = engine()
    mail = outlook(store=machine.store(mails()), outlook_version=version)
    beacon.connected("AppToEngine")
    for editor in (PLAIN, HTML_EDITOR, RICH, WORD):
        mail.send(f"item {editor} no-mapi")
        mail.send(f"open {editor}")
        beacon.connected("AppToEngine")
        if version == 9:
            messages, _ = a.document(beacon)
            assert f'docName="Editor {editor}"' in messages[0], editor
            assert ' sender="Bo Kim"  recipient="Ann Lee" ' in messages[0], editor
            assert [text.strip() for _, text in a.texts(messages)] == [f"Editor {editor}", *BODY.strip().split("\r\n")], editor
        else:
            beacon.expect_nothing("<pre_send_document", 4 * a.DELAY / 1000)  # an empty body stays empty
        mail.send(f"close {editor}")
        mail.expect("^closed inspector")
    a.check_nothing_left(mail)
