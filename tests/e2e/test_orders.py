"""Orders of the engine."""

import time

import adapter as a


def test_exit_closes_the_link_and_the_next_tick_opens_it(machine, engine, outlook):
    beacon, mail, handle = a.start(machine, engine, outlook)
    mail.send("select 1")
    a.document(beacon)
    beacon.send("exit")
    beacon.expect(rf'^control {handle} <exit id="{handle}"/>')
    beacon.expect(rf'^message {handle} <exit id="{handle}"/>')
    assert beacon.connected("AppToEngine") == handle
    assert 'docName="One"' in a.document(beacon)[0][0]


def test_a_send_that_the_controller_orders_follows_after_the_delay(machine, engine, outlook):
    delay = 400
    settings = {"auto_update": "true", "delay": delay}  # only "True" switches it on
    beacon, mail, _ = a.start(machine, engine, outlook, settings=settings)

    def ordered(order, expected):
        """Gives the order and checks the name of the document that follows; "" for none."""
        sent = len(a.titles(beacon))
        beacon.send(order)
        given = time.monotonic()
        if expected:
            assert expected in a.document(beacon)[0][0], order
            assert time.monotonic() - given > 0.7 * delay / 1000, order
            sent += 1
        beacon.expect_nothing("<pre_send_document", 2 * delay / 1000)
        assert len(a.titles(beacon)) == sent, order

    mail.send("select 1")
    ordered("set_autoupdate true", ' docName="One" ')
    ordered("set_autoupdate false", "")
    ordered("set_autoupdate true", "")  # not forced: the item was sent and has not changed
    assert machine.log(2).count("SkipItem is True(3)") == 1
    ordered("set_autoupdate false", "")
    mail.send("select 2")
    for _ in range(2):  # a click sends anyway, even an unchanged item
        ordered("button_click 3", 'buttonClicked="1"')
    assert a.titles(beacon) == ["One", "Two", "Two"]


def test_a_flood_of_clicks_is_one_click_and_leaves_no_trace(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, settings={"auto_update": "", "Logging": 0})
    mail.send("select 1")
    clicks = 500
    for number in range(clicks):  # without a pause
        beacon.send(f"button_click {number}")
    mail.send("say still here")
    mail.expect("^say still here", 2)  # while they arrive
    assert 'docName="One"' in a.document(beacon, 20)[0][0]
    beacon.expect_nothing("<pre_send_document", 3 * a.DELAY / 1000)
    assert a.titles(beacon) == ["One"]
    assert not list(machine.logs_folder.iterdir()), "logging is off"
