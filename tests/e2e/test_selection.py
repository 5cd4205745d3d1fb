"""Selected text, by version and editor."""

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
