"""What the engine orders, and what it does to its channels."""

import pytest

import adapter as a


def test_exit_shuts_the_link_and_the_next_tick_opens_it(machine, engine, outlook):
    beacon, mail, handle = a.start(machine, engine, outlook)
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
    beacon, mail, handle = a.start(machine, engine, outlook)
    beacon.send(f"disconnect {side} all 77")  # a wrong id disconnects all the same
    assert beacon.connected("AppToEngine") == handle
    mail.send("select 2")
    assert 'docName="Two"' in a.document(beacon)[0][0]
    a.check_nothing_left(mail)


def test_automatic_update_is_the_controllers_switch(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, settings={"auto_update": "true"})  # only "True" switches it on
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
    beacon, mail, first = a.start(machine, engine, outlook)
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
