"""Missing documents and texts of item windows, and what Outlook 2000 shows where MAPI gives nothing."""

import adapter as a


def test_a_viewer_without_a_document_costs_only_the_selection(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, a.editor_mails(), outlook_version=11)
    inspector = a.open_item(mail, beacon, a.HTML)
    a.document(beacon)
    mail.send('select text "marked part"')
    mail.send("document off")
    a.settle(mail)
    beacon.send(f"button_click 1 {inspector}")
    messages, _ = a.document(beacon, 15)
    assert not a.selected(messages) and len(a.texts(messages)) >= 2
    mail.send("document on")
    assert machine.log(2).count("GetSelectedEx(7) WindowDOM(hWnd) returned nothing") == 1
    assert a.selected(a.send_marked(mail, beacon, inspector)[0]) == ["marked part"]


def test_outlook_2000_reads_the_window_where_mapi_gives_nothing(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, a.editor_mails(), outlook_version=9)
    for editor in (a.PLAIN, a.HTML, a.RICH, a.WORD):
        mail.send(f"item {editor} no-mapi")
        a.open_item(mail, beacon, editor)
        messages, _ = a.document(beacon)
        assert f'docName="Editor {editor}"' in messages[0], editor
        assert ' sender="Bo Kim"  recipient="Ann Lee" ' in messages[0], editor
        lines = [f"Editor {editor}", *a.EDITOR_BODY.splitlines()]
        assert [text.strip() for _, text in a.texts(messages)] == lines, editor
        mail.send(f"close {editor}")
        mail.expect("^closed inspector")
