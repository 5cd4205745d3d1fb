"""Sends wait while the user types, clicks or has a dialog open."""

import time

import adapter as a

DELAY = 600


def test_a_key_or_click_postpones_a_send_but_a_mouse_move_does_not(machine, engine, outlook):
    items = [a.mail(n, f"Number {n}") for n in range(1, 6)]
    delay = DELAY * a.h.PATIENCE
    beacon, mail, _ = a.start(machine, engine, outlook, items, {"delay": delay})
    mail.send("select 5")
    a.document(beacon)  # the first one of a process takes longer
    times = {}
    for number, action in enumerate(("move", "key a", "click 5 5", "wheel"), 1):
        mail.send(f"select {number}")
        mail.send(f"wait {DELAY // 3}")
        mail.send(action)
        mail.expect(f"select {number}")
        selected = time.monotonic()
        assert f'docName="Number {number}"' in a.document(beacon)[0][0]
        times[action] = (time.monotonic() - selected) / (delay / 1000)
    assert times.pop("move") < 1.7, times
    assert all(1.7 < value < 4 for value in times.values()), times


def test_a_dialog_postpones_a_send(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, [a.mail(1, "Open", a.LONG)])
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
