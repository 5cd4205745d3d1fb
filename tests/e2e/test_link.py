"""An engine that exits, hangs or comes back."""

import time

import pytest

import adapter as a

TICK = 2.0  # seconds between two checks of the link


@pytest.mark.parametrize("end", [["die"], ["die_in_call"], ["die_in_call", "disconnect controller all"]])
def test_the_engine_dies_and_comes_back(machine, engine, outlook, end):
    beacon, mail, handle = a.start(machine, engine, outlook)
    mail.send("select 1")
    a.document(beacon)
    for command in end:  # the last one starts a shutdown, and the engine dies in it
        beacon.send(command)
    mail.send("select 2")
    beacon.wait()
    mail.expect("select 2")
    again = engine()
    ready = time.monotonic()
    assert again.connected("AppToEngine") == handle
    assert time.monotonic() - ready < 2 * TICK * a.h.PATIENCE + 1
    assert again.message() == f'<hello id="{handle}"/>'
    messages, _ = a.document(again)
    assert 'docName="Two"' in messages[0]
    again.expect_nothing("<pre_send_document", 3 * a.DELAY / 1000)


@pytest.mark.parametrize("side", ["controller", "engine"])
def test_a_side_that_disconnects_is_connected_again(machine, engine, outlook, side):
    beacon, mail, handle = a.start(machine, engine, outlook)
    beacon.message("<hello")
    beacon.send(f"disconnect {side} all")
    assert beacon.connected("AppToEngine") == handle
    mail.send("select 1")
    a.document(beacon)


def test_a_window_that_closes_after_the_engine_has_died_leaves_nothing(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook)
    a.open_item(mail, beacon, 1)
    a.document(beacon)
    beacon.kill()
    mail.send("close 1")
    mail.expect("^closed inspector", 20)
    mail.send("references")
    assert "MailItem" not in mail.expect("^references:").string


def test_a_hung_engine_holds_outlook_only_inside_its_call(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook)
    beacon.message("<hello")
    beacon.send("hang_next 3")
    mail.send("select 1")
    beacon.expect("^# hangs")
    mail.send("select 2")  # carried out when the engine's call returns
    assert ";Bo KimOne;" in beacon.message("<eod ", 20)
    assert 'docName="Two"' in a.document(beacon, 20)[0][0]
    beacon.expect_nothing("<pre_send_document", 1)
    assert a.titles(beacon) == ["One", "Two"], "sent twice"
