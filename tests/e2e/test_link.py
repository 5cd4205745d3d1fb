"""The engine's side of life: it is late, it goes, it hangs, it gives orders."""

import time

import pytest

import adapter as a

TICK = 2.0  # seconds between two looks at the link


def test_the_engine_comes_late(machine, engine, outlook):
    a.prepare(machine)
    mail = outlook(store=machine.store([a.mail(1, "One")]))
    mail.send("select 1")
    mail.send("wait 2500")
    mail.send("say still here")
    mail.expect("^say still here")
    assert "App Startup: Failed to obtain BeaconController.Application" in machine.log(1)
    beacon = engine()
    handle = beacon.connected("AppToEngine")
    assert beacon.message("<hello") == f'<hello id="{handle}"/>'
    assert 'docName="One"' in a.document(beacon)[0][0]  # the current item, though nobody selects it again
    a.check_nothing_left(mail)


@pytest.mark.parametrize("end", [["die"], ["die_in_call"], ["die_in_call", "disconnect controller all"]])
def test_the_engine_dies_and_comes_back(machine, engine, outlook, end):
    beacon, mail, handle = a.start(machine, engine, outlook)
    mail.send("select 1")
    a.document(beacon)
    for command in end:  # the last one starts the link's shutdown, and the engine is gone before it has said good-bye
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
    log = machine.log(1)
    for line in ("Reconnect trying to StartUp", "Reconnect StartUp success, start ReSend", "Reconnect ReSend complete"):
        assert line in log
    a.check_nothing_left(mail)


def test_a_window_that_closes_after_the_engine_has_died_leaves_nothing(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook)
    mail.send("open 1")
    beacon.connected("AppToEngine")
    a.document(beacon)
    beacon.kill()
    mail.send("close 1")
    mail.expect("^closed inspector", 20)
    mail.send("references")
    assert "MailItem" not in mail.expect("^references:").string
    a.check_nothing_left(mail)


def test_an_engine_that_dies_inside_a_shutdown_is_replaced(machine, engine, outlook):
    beacon, mail, handle = a.start(machine, engine, outlook)
    beacon.message("<hello")
    beacon.send("die_in_call")
    beacon.send("disconnect controller")  # the link says good-bye to the engine, which ends inside that call
    beacon.wait()
    again = engine()
    assert again.connected("AppToEngine") == handle
    a.select(mail, 2)
    assert 'docName="Two"' in a.document(again)[0][0]
    a.check_nothing_left(mail)


def test_a_hung_engine_holds_outlook_only_inside_its_call(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook)
    beacon.message("<hello")
    beacon.send("hang_next 5")
    mail.send("select 1")
    beacon.expect("^# hangs")
    mail.send("select 2")  # waits with Outlook, then goes on
    assert ";Bo KimOne;" in beacon.message("<eod ", 20)
    assert 'docName="Two"' in a.document(beacon, 20)[0][0]
    beacon.expect_nothing("<pre_send_document", 1)
    assert a.titles(beacon) == ["One", "Two"], "sent twice"
    a.check_nothing_left(mail)
