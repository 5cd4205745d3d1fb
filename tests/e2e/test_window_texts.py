"""Texts that are read from windows, by version and editor."""

import pytest

import adapter as a

# Word's window gives no selection. Up to Outlook 2003 an explorer shows a Word item as HTML.
READABLE = {
    "explorer": {9: {1, 2, 3, 4}, 10: {1, 2, 3, 4}, 11: {1, 2, 3, 4}, 12: set()},
    "inspector": {9: {1, 2, 3}, 10: {1, 2, 3}, 11: {1, 2, 3}, 12: set()},
}


@pytest.mark.parametrize("version", [9, 10, 11, 12])
def test_selected_text_by_version_and_editor(machine, engine, outlook, version):
    beacon, mail, explorer = a.start(machine, engine, outlook, a.editor_mails(), outlook_version=version)
    found = {"explorer": set(), "inspector": set()}

    def read(kind, window, editor):
        """Selects text in the window, requests a send, and notes whether the selection arrived."""
        assert not a.selected(a.document(beacon)[0])
        messages, doc_id = a.send_marked(mail, beacon, window)
        assert doc_id.startswith(f"{window};")
        if a.selected(messages) == ["marked part"]:
            found[kind].add(editor)
        else:
            assert not a.selected(messages)

    for editor in (a.PLAIN, a.HTML, a.RICH, a.WORD):
        mail.send(f"select {editor}")
        read("explorer", explorer, editor)
        read("inspector", a.open_item(mail, beacon, editor), editor)
        mail.send(f"close {editor}")
        mail.expect("^closed inspector")
    assert found == {kind: versions[version] for kind, versions in READABLE.items()}
    assert "Exp. GetSelectedEx: Exception; " not in machine.log(2)


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
