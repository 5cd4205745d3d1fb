"""Loading, quitting and unloading."""

import adapter as a
import beacon_harness as h


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
        for answer in ("references: none", "PROP_OLK: none", "DllCanUnloadNow: S_OK"):
            mail.expect(f"^{answer}")
        mail.expect(f"^windows of {h.PROG_ID}: none")
    mail.send("select 1")
    beacon.expect_nothing("^message", 0.5)
    mail.quit()


def test_without_logs_folder_and_delay_until_the_engine_comes(machine, engine, outlook):
    machine.install({"DefaultAutoUpdate": "True"}, {}, logs=False)
    mail = outlook(store=machine.store([a.mail(1, "One")]))
    for command in ("key a", "view switch", "select 1", "wait 2500"):
        mail.send(command)
    a.settle(mail)
    beacon = engine()
    handle = beacon.connected("AppToEngine")
    assert beacon.message("<hello") == f'<hello id="{handle}"/>'
    assert 'docName="One"' in a.document(beacon)[0][0]  # the current item, without a new selection
    a.check_nothing_left(mail)
    assert not machine.logs_folder.exists()
