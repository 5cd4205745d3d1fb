"""The engine's side of life: it is late, it goes, it hangs, it gives orders."""

import time

import pytest

import adapter as a

TICK = 2.0  # seconds between two looks at the link


def start(machine, engine, outlook, items=None, **settings):
    a.prepare(machine, **settings)
    beacon = engine()
    mail = outlook(store=machine.store(items or [a.mail(1, "One"), a.mail(2, "Two"), a.mail(3, "Three")]))
    return beacon, mail, beacon.connected("AppToEngine")


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


@pytest.mark.parametrize("end", ["die", "die_in_call"])
def test_the_engine_dies_and_comes_back(machine, engine, outlook, end):
    beacon, mail, handle = start(machine, engine, outlook)
    mail.send("select 1")
    a.document(beacon)
    beacon.send(end)
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


def test_a_hung_engine_holds_outlook_only_inside_its_call(machine, engine, outlook):
    beacon, mail, _ = start(machine, engine, outlook)
    beacon.send("hang_next 5")
    mail.send("select 1")
    beacon.expect("^# hangs")
    mail.send("select 2")  # waits with Outlook, then goes on
    messages, _ = a.document(beacon, 20)
    assert 'docName="One"' in messages[0] and messages[-1].startswith("<eod")
    assert 'docName="Two"' in a.document(beacon, 20)[0][0]
    beacon.expect_nothing("<pre_send_document", 1)
    assert a.titles(beacon) == ["One", "Two"], "sent twice"
    a.check_nothing_left(mail)


def test_exit_shuts_the_link_and_the_next_tick_opens_it(machine, engine, outlook):
    beacon, mail, handle = start(machine, engine, outlook)
    mail.send("select 1")
    a.document(beacon)
    beacon.send("exit")
    beacon.expect(rf'^control {handle} <exit id="{handle}"/>')
    beacon.expect(rf'^message {handle} <exit id="{handle}"/>')
    assert beacon.connected("AppToEngine") == handle
    assert 'docName="One"' in a.document(beacon)[0][0]
    a.check_nothing_left(mail)


@pytest.mark.parametrize("side", ["engine", "controller"])
def test_a_side_that_disconnects_is_connected_again(machine, engine, outlook, side):
    beacon, mail, handle = start(machine, engine, outlook)
    beacon.send(f"disconnect {side} all 77")  # a wrong id disconnects all the same
    assert beacon.connected("AppToEngine") == handle
    mail.send("select 2")
    assert 'docName="Two"' in a.document(beacon)[0][0]
    a.check_nothing_left(mail)


def test_automatic_update_is_the_controllers_switch(machine, engine, outlook):
    beacon, mail, _ = start(machine, engine, outlook, auto_update="true")  # only "True" switches it on
    mail.send("select 1")
    mail.send(f"wait {3 * a.DELAY}")
    mail.send("say quiet")
    mail.expect("^say quiet")
    assert a.titles(beacon) == []
    beacon.send("set_autoupdate true")
    assert 'docName="One"' in a.document(beacon)[0][0]
    beacon.send("set_autoupdate true")  # on already: nothing is sent again
    beacon.send("set_autoupdate false")
    mail.send("select 2")
    beacon.expect_nothing("<pre_send_document", 4 * a.DELAY / 1000)
    beacon.send("button_click 3")  # a click sends in spite of it
    messages, _ = a.document(beacon)
    assert 'docName="Two"' in messages[0] and 'buttonClicked="1"' in messages[0]
    beacon.send("control <EXIT/>")  # no blank: no verb
    beacon.expect_nothing("<exit", 0.5)
    a.check_nothing_left(mail)


def test_two_windows_have_two_links(machine, engine, outlook):
    beacon, mail, first = start(machine, engine, outlook)
    mail.send("new explorer")
    mail.send("activate explorer 2")
    second = beacon.connected("AppToEngine")
    assert second != first
    mail.send("select 2")
    assert a.document(beacon)[1].startswith(f"{second};")
    mail.send("close explorer 2")
    beacon.expect(rf'^message {second} <exit id="{second}"/>')
    mail.send("activate explorer 1")
    mail.send("select 3")
    assert a.document(beacon)[1].startswith(f"{first};")
    a.check_nothing_left(mail)
