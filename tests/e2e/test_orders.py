"""Orders of the engine."""

import adapter as a


def test_the_controller_switches_automatic_updates(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, settings={"auto_update": "true"})  # only "True" switches it on
    mail.send("select 1")
    beacon.expect_nothing("<pre_send_document", 2 * a.DELAY / 1000)
    beacon.send("set_autoupdate true")
    assert ' docName="One" ' in a.document(beacon)[0][0]
    beacon.send("set_autoupdate true")  # not forced: the item was sent and has not changed
    beacon.expect_nothing("<pre_send_document", 2 * a.DELAY / 1000)
    beacon.send("set_autoupdate false")
    mail.send("select 2")
    beacon.expect_nothing("<pre_send_document", 2 * a.DELAY / 1000)


def test_a_flood_of_clicks_is_one_click(machine, engine, outlook):
    beacon, mail, _ = a.start(machine, engine, outlook, settings={"auto_update": "", "Logging": 0})
    mail.send("select 1")
    clicks = 500
    for number in range(clicks):  # without a pause
        beacon.send(f"button_click {number}")
    mail.send("say still here")
    mail.expect("^say still here", 2)  # while they arrive
    messages, _ = a.document(beacon, 20)
    assert 'docName="One"' in messages[0] and 'buttonClicked="1"' in messages[0]
    beacon.expect_nothing("<pre_send_document", 3 * a.DELAY / 1000)
    beacon.send("button_click 1")  # sends even an unchanged item
    a.document(beacon)
    assert a.titles(beacon) == ["One", "One"]
    assert not list(machine.logs_folder.iterdir()), "logging is off"
