"""The stand-ins start, find each other's world and end in order."""


def test_engine_and_outlook_start_and_end(engine, outlook):
    beacon = engine()
    mail = outlook(no_addins=True)
    mail.expect("^opened explorer")
    assert mail.quit() == 0
    assert beacon.quit() == 0
    assert beacon.lines[-1] == "# bye"


def test_a_killed_engine_makes_room_for_the_next(engine):
    beacon = engine()
    beacon.kill()
    assert not beacon.is_running
    assert engine().quit() == 0
