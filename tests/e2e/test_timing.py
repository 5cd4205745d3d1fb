"""Sends wait while the user types or has a dialog open."""

import time

import adapter as a


def test_a_key_postpones_a_send_but_a_mouse_move_does_not(machine, engine, outlook):
    delay = 600 * a.h.PATIENCE
    beacon, mail, _ = a.start(machine, engine, outlook, settings={"delay": delay})
    mail.send("select 3")
    a.document(beacon)  # the first one of a process takes longer
    for number, action, least, most in ((1, "move", 0, 1.7), (2, "key a", 1.7, 4)):
        mail.send(f"select {number}")
        mail.expect(f"select {number}")
        selected = time.monotonic()
        mail.send(f"wait {delay // 3}")
        mail.send(action)
        a.document(beacon)
        assert least < (time.monotonic() - selected) / (delay / 1000) < most, action


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
