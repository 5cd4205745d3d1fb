"""Loading, quitting and unloading."""

import adapter as a
import beacon_harness as h


def test_two_explorers_have_two_links(machine, engine, outlook):
    beacon, mail, first = a.start(machine, engine, outlook)
    mail.send("new explorer")
    mail.send("activate explorer 2")
    second = beacon.connected("AppToEngine")
    mail.send("select 2")
    assert a.document(beacon)[1].startswith(f"{second};")
    mail.send("close explorer 2")
    beacon.expect(rf'^message {second} <exit id="{second}"/>')
    mail.send("activate explorer 1")
    mail.send("select 3")
    assert a.document(beacon)[1].startswith(f"{first};")


def test_quitting_with_windows_open_leaves_nothing(machine, engine, outlook):
    """Every second listener stays registered; if one held an Outlook object, Outlook up to 2003 would never end."""
    beacon, mail, handle = a.start(machine, engine, outlook, strict_exit=True)
    handles = [handle]
    for window in ("explorer 2", "explorer 3", "1", "2"):
        mail.send("new explorer" if "explorer" in window else f"open {window}")
        mail.send(f"activate {window}")
        handles.append(beacon.connected("AppToEngine"))
    a.check_nothing_left(mail, "quit now")
    for handle in handles:
        assert beacon.matching(rf'^message {handle} <exit id="{handle}"/>'), "no good-bye from this window"
    log = machine.log(2)
    assert "RemoveAllInspectors() Count=2" in log and "RemoveAllExplorers() Count=3" in log
    assert log.count("Exception in gOutlookApp_Quit: Subscript out of range 9") == 2


def test_connected_and_disconnected_while_outlook_runs(machine, engine, outlook):
    a.prepare(machine)
    beacon = engine()
    mail = outlook(store=machine.store([a.mail(1), a.mail(2)]), no_addins=True)
    for external in ("", "external "):
        mail.send(f"connect {external}{h.PROG_ID}")
        handle = beacon.connected("AppToEngine")
        mail.send("select 1" if external else "select 2")
        a.document(beacon)
        mail.send(f"disconnect {h.PROG_ID}")
        beacon.expect(rf'^message {handle} <exit id="{handle}"/>')
        for command in ("references", "prop?", "unload?"):
            mail.send(command)
        mail.expect("^references: none")
        mail.expect("^PROP_OLK: none")
        mail.expect("^DllCanUnloadNow: S_OK")
        mail.expect(f"^windows of {h.PROG_ID}: none")
    mail.send("select 1")
    beacon.expect_nothing("^message", 0.5)
    mail.quit()


def test_no_engine_no_logs_folder_no_settings(machine, outlook):
    machine.install({}, {}, logs=False)
    mail = outlook(store=machine.store([a.mail(1)]))
    for command in ("select 1", "wait 2500", "key a", "view switch"):
        mail.send(command)
    a.check_nothing_left(mail)
    assert not machine.logs_folder.exists()


def test_the_engine_comes_late(machine, engine, outlook):
    a.prepare(machine)
    mail = outlook(store=machine.store([a.mail(1, "One")]))
    mail.send("select 1")
    mail.send("wait 2500")
    a.settle(mail)
    assert "App Startup: Failed to obtain BeaconController.Application" in machine.log(1)
    beacon = engine()
    handle = beacon.connected("AppToEngine")
    assert beacon.message("<hello") == f'<hello id="{handle}"/>'
    assert 'docName="One"' in a.document(beacon)[0][0]  # the current item, without a new selection
