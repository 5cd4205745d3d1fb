"""Texts that are read from windows, by version and editor."""

import pytest

import adapter as a

HTML, WORD = 2, 4  # of Outlook's editor types 1 to 4
HTML_BODY = f"<html><body>{''.join(f'<p>{line}</p>' for line in a.EDITOR_BODY.splitlines())}</body></html>"


def start(machine, engine, outlook, version):
    """The number of each mail is its editor type."""
    mails = [
        a.mail(editor, f"Editor {editor}", a.EDITOR_BODY, editor=editor, html=HTML_BODY if editor == HTML else "")
        for editor in range(1, 5)
    ]
    return a.start(machine, engine, outlook, mails, outlook_version=version)


@pytest.mark.parametrize("version", [9, 11, 12])
def test_texts_and_selections_by_version_and_editor(machine, engine, outlook, version):
    beacon, mail, explorer = start(machine, engine, outlook, version)
    for editor in range(1, 5):
        mail.send(f"select {editor}")
        a.document(beacon)
        messages, _ = a.send_marked(mail, beacon, explorer)
        assert a.selected(messages) == ["marked part"] * (version < 12), editor
        if version == 9:
            mail.send(f"item {editor} no-mapi")  # its texts come from the window
        inspector = a.open_item(mail, beacon, editor)
        messages, _ = a.document(beacon)
        assert f'docName="Editor {editor}"' in messages[0] and ' sender="Bo Kim"  recipient="Ann Lee" ' in messages[0]
        lines = [f"Editor {editor}", *a.EDITOR_BODY.splitlines()]
        assert [text.strip() for _, text in a.texts(messages)] == lines, editor
        messages, _ = a.send_marked(mail, beacon, inspector)
        assert a.selected(messages) == ["marked part"] * (version < 12 and editor != WORD), editor
        mail.send(f"close {editor}")
        mail.expect("^closed inspector")
    assert "Exp. GetSelectedEx: Exception; " not in machine.log(2)


def test_a_viewer_without_a_document_costs_only_the_selection(machine, engine, outlook):
    beacon, mail, _ = start(machine, engine, outlook, 11)
    inspector = a.open_item(mail, beacon, HTML)
    a.document(beacon)
    mail.send("document off")
    messages, _ = a.send_marked(mail, beacon, inspector)
    assert not a.selected(messages) and len(a.texts(messages)) >= 2
    mail.send("document on")
    assert machine.log(2).count("GetSelectedEx(7) WindowDOM(hWnd) returned nothing") == 1
    assert a.selected(a.send_marked(mail, beacon, inspector)[0]) == ["marked part"]
