"""The stand-in engine: scripts, errors, the end of a client, and its registration."""

import adapter as a
import beacon_harness as h


def run(*options):
    return h.Program("standin_engine.exe", *options).wait()


def test_a_script_runs_while_clients_are_served_and_errors_are_named(machine, engine, outlook):
    a.prepare(machine)
    script = machine.folder / "commands.txt"
    script.write_bytes(
        b"\xef\xbb\xbf# a comment\r\nwait for \"^message .* <hello\" 60\nset_autoupdate true # another\n"
        b"exit 7\ndisconnect sideways\nno_such\nwait for never 0\n"
    )
    beacon = engine(script=script)
    assert run() == 3, "a second engine must not start"
    mail = outlook()
    beacon.expect("^# sent control AppToController .*<SET_AUTOUPDATE")
    for error in (
        "exit: no connected client 7", 'disconnect: must be controller or engine, not "sideways"',
        'unknown command "no_such"; "help" lists them', 'wait: no line matched "never" in time',
    ):  # fmt: skip
        beacon.expect(f"^# error {error}")
    mail.kill()
    for channel in ("AppToController", "AppToEngine"):
        beacon.expect(f"^# lost {channel}")
    beacon.send("clients")
    beacon.expect("^# no clients")
    assert beacon.quit() == 1
    assert run("--state", "much") == 2


def test_registration_is_made_and_undone(machine, engine):
    script = machine.folder / "state.vbs"
    script.write_text('WScript.Echo CreateObject("BeaconUtil.ToolbarConfig").EngineState')

    def state():
        return machine.run("cscript.exe", "//nologo", h.windows_path(script))[1].splitlines()

    assert run("--register") == 0
    assert "0" in state(), "COM starts a server, which is no engine"
    beacon = engine(toolbar=True)
    assert "3" in state()
    beacon.quit()
    assert run("--unregister") == 0
    for key in (
        "BeaconController.Application",
        r"CLSID\{78256BD9-A478-4B56-8867-BB0E43D157BF}",
        r"TypeLib\{7BA3A72F-9FA5-4C9D-A207-4F5C4F0D4978}\1.0\0",
    ):
        assert machine.run("reg.exe", "query", rf"HKLM\Software\Classes\{key}", check=False)[0] != 0, key
