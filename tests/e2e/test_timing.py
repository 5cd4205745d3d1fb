"""An item that stays open waits for a dialog's end, and is looked at again."""

import adapter as a


def test_a_dialog_holds_the_send_back(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, [a.mail(1, "Open", a.LONG)])
    a.open_item(mail, beacon, 1)
    mail.send("dialog open")
    mail.expect("^opened a dialog")
    beacon.expect_nothing("<pre_send_document", 6 * a.DELAY / 1000)
    log = machine.log(2)
    assert "SkipItem is True(1)" in log
    # Given up early: tried again after about thirty seconds' worth of ticks; an interval below a second counts as one.
    assert "SetUpdateCountThreshold :30" in log
    mail.send("dialog close")
    mail.expect("^closed the dialog")
    assert 'docName="Open"' in a.document(beacon, 12)[0][0]


def test_an_open_item_is_sent_again_when_it_has_changed(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, [a.mail(1, "Open", a.LONG), a.mail(2)])
    a.open_item(mail, beacon, 1)
    a.document(beacon)
    beacon.expect_nothing("<pre_send_document", 1)
    mail.send('edit 1 replace "line 4 of" "line four of"')
    messages, _ = a.document(beacon, 15)  # after about ten quiet seconds
    assert any("line four of" in text for _, text in a.texts(messages))
    beacon.expect_nothing("<pre_send_document", 1.5)
    assert "StartAnalysis sending uninterrupted" in machine.log(2)
