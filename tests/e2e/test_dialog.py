"""Sends wait while a dialog is open."""

import adapter as a


def test_a_dialog_postpones_a_send(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, [a.mail(1, "Open", a.EDITOR_BODY)])
    a.open_item(mail, beacon, 1)
    mail.send("dialog open")
    mail.expect("^opened a dialog")
    beacon.expect_nothing("<pre_send_document", 6 * a.DELAY / 1000)
    log = machine.log(2)
    assert "SkipItem is True(1)" in log
    # The next try follows after 30 seconds of ticks; an interval below a second counts as one second.
    assert "SetUpdateCountThreshold :30" in log
    mail.send("dialog close")
    mail.expect("^closed the dialog")
    assert 'docName="Open"' in a.document(beacon, 12)[0][0]
