"""Sends wait for the user: the delay after the last event, and input during it."""

import time

import adapter as a

DELAY = 600


def start(machine, engine, outlook, items):
    a.prepare(machine, delay=DELAY * a.h.PATIENCE)
    beacon = engine()
    mail = outlook(store=machine.store(items))
    beacon.connected("AppToEngine")
    mail.send("wait 100")
    return beacon, mail


def test_three_selections_send_one_document(machine, engine, outlook):
    beacon, mail = start(machine, engine, outlook, [a.mail(n, f"Number {n}") for n in (1, 2, 3)])
    for n in (1, 2, 3):
        mail.send(f"select {n}")
        mail.send(f"wait {DELAY // 4}")
    mail.expect("select 3")
    selected = time.monotonic()
    assert 'docName="Number 3"' in a.document(beacon)[0][0]
    waited = time.monotonic() - selected
    assert waited > 0.7 * DELAY / 1000, waited
    beacon.expect_nothing("<pre_send_document", 2 * DELAY / 1000)
    assert a.titles(beacon) == ["Number 3"]
    a.check_nothing_left(mail)


def test_a_key_or_click_puts_the_send_off_a_mouse_move_does_not(machine, engine, outlook):
    beacon, mail = start(machine, engine, outlook, [a.mail(n, f"Number {n}") for n in range(1, 6)])
    times = {}
    for number, action in enumerate(("move", "key a", "click 5 5", "wheel"), 1):
        mail.send(f"select {number}")
        mail.send(f"wait {DELAY // 3}")
        mail.send(action)
        mail.expect(f"select {number}")
        selected = time.monotonic()
        assert f'docName="Number {number}"' in a.document(beacon)[0][0]
        times[action] = (time.monotonic() - selected) / (DELAY * a.h.PATIENCE / 1000)
    assert times.pop("move") < 1.7, times
    assert all(1.7 < value < 4 for value in times.values()), times
    a.check_nothing_left(mail)
