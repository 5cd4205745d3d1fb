"""The messages that the engine receives for an item."""

import re

import adapter as a


def test_a_mail_is_sent_as_preamble_subject_lines_and_end(machine, engine, outlook):
    body = "Anna & Bo,\r\n\r\nthe \"final\" figures for <spring> are at http://x.example/a?b=c now.\r\n-- \r\nBo\r\n"
    beacon, mail, handle = a.start(machine, engine, outlook, [a.mail(1, "RE: Re: Budget", body)])
    assert beacon.message() == f'<hello id="{handle}"/>'
    mail.send("select 1")
    messages, doc_id = a.document(beacon)
    assert re.fullmatch(rf"{handle};Bo KimRE: Re: Budget;-?\d+", doc_id)
    assert ' sender="Bo Kim"  recipient="Ann Lee"  buttonClicked="0" />' in messages[0]
    assert a.texts(messages) == [
        ("high", " Budget"),
        ("low", "Anna &amp; Bo,"),
        ("medium", "\nthe &quot;final&quot; figures for &lt;spring&gt; are at now."),
        ("low", "\nBo"),
    ]
    a.check_nothing_left(mail)
    beacon.expect(rf'^control {handle} <exit id="{handle}"/>')
    beacon.expect(rf'^message {handle} <exit id="{handle}"/>')


def test_a_contact_is_weighted_by_repetition(machine, engine, outlook):
    beacon, mail, handle = a.start(machine, engine, outlook, [a.contact(1), a.contact(2, "", "", "", "", "")])
    mail.send("select 1")
    messages, doc_id = a.document(beacon)
    assert doc_id.startswith(f"{handle};Ann LeeLee & CoCFO;")
    assert messages[0].startswith('<pre_send_document type="contact" title="Ann Lee" ')
    person = '<person firstname="Ann" lastname="Lee" company="Lee &amp; Co" position="CFO" email="ann.lee@example.org" '
    assert messages[1].startswith(person)
    pair = "Ann Lee Lee &amp; Co ; "
    weighted = "Ann Lee ; CFO ; Lee &amp; Co ; " * 64
    assert a.texts(messages) == [
        ("selected", ""),
        ("high", "Ann Lee ; Ann Lee ; Ann Lee"),
        ("high", "Lee &amp; Co ; Lee &amp; Co ; Lee &amp; Co"),
        ("high", f"{pair} ; {pair} ; {pair}"),
        ("high", weighted),
        ("high", weighted),
    ]
    mail.send("select 2")
    messages, _ = a.document(beacon)
    assert ' docName="Unnamed Contact"' in messages[0]
    assert 'doc="  ;   ;  "' in messages[3], "the names are a single blank"


def test_foreign_long_and_missing_text_arrives(machine, engine, outlook):
    two_megabytes = "".join(f"Line {n} of a mail that has thirty thousand lines and more.\r\n" for n in range(35_000))
    items = [
        a.mail(1, "  ", "An empty subject gets a title of its own here"),
        a.mail(2, "Grüße", "Grüße aus Köln, bitte melde dich doch bald wieder\r\n", senderName="Jörg <Müller>"),
        a.mail(3, "Long", "x" * 5000, receivedBy=""),
        a.mail(4, "会議の資料", "資料をお送りします。Вот они.\r\n" + "長" * 3072, senderName="山田 太郎"),
        a.mail(5, "Very long", two_megabytes),
    ]
    beacon, mail, _ = a.start(machine, engine, outlook, items)

    def sent(number):
        mail.send(f"select {number}")
        return a.document(beacon)[0]

    for number, name in ((5, "Very long"), (2, "Grüße"), (5, "Very long"), (1, "No Subject")):  # Outlook is not blocked
        document = sent(number)
        assert f'docName="{name}"' in document[0]
    assert len(a.texts(document)) == 1, "no subject"
    document = sent(2)
    assert 'sender="Jörg <Müller>"' in document[0]
    assert a.texts(document)[1][1].startswith("Grüße aus Köln,")
    assert a.texts(sent(3))[1] == ("low", "x" * 3072)  # MaxDocUnits
    document = sent(4)
    assert 'docName="会議の資料"' in document[0] and 'sender="山田 太郎"' in document[0]
    first, rest = (text for _, text in a.texts(document)[1:])
    assert first == "資料をお送りします。Вот они." and set(rest.strip()) == {"長"}
