"""An item that stays open is looked at again."""

import adapter as a


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
