"""What an upgrade, a repair and a removal keep."""

from packages import DEFAULTS, DLL, READER, READER_DLL, all_settings, h, older, registry
import adapter as a


def test_upgrade_and_repair_keep_settings_and_folder(machine, packages, install, engine, outlook):
    folder = h.PREFIX / "drive_c/Chosen"
    machine.configure({}, {})
    install("STARTANALYSISDELAY=200", r"INSTALLDIR=C:\Chosen", msi=older(machine.folder))
    beacon = engine()
    mail = outlook(store=machine.store([a.mail(1, "One")]))
    beacon.connected("AppToEngine")
    mail.send("select 1")
    assert 'docName="One"' in a.document(beacon)[0][0]
    a.check_nothing_left(mail)
    of_user = {"DefaultAutoUpdate": "True", "EnableToolbar": "1"}
    assert all_settings(machine) == DEFAULTS | {"StartAnalysisDelay": "200"} | of_user

    machine.configure(
        {"DefaultAutoUpdate": "False", "EnableToolbar": "0"},
        {"Logging": 1, "MaxDocUnits": "100", "InstallDir": r"C:\\Chosen\\"},
    )
    chosen = {"DefaultAutoUpdate": "False", "EnableToolbar": "0", "Logging": "dword:00000001", "MaxDocUnits": "100"}
    install()
    assert all_settings(machine) == chosen | {"StartAnalysisDelay": "2000"}
    assert (folder / DLL).read_bytes() == machine.dll.read_bytes()
    assert READER_DLL in str(registry(machine, READER)), "the old version's reader is the product's own"
    key = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall"
    assert r"C:\Chosen" in machine.run("reg.exe", "query", key, "/s", "/v", "InstallLocation")[1]

    install("REINSTALL=ALL", "REINSTALLMODE=omus")  # what "Repair" does
    assert all_settings(machine) == chosen | {"StartAnalysisDelay": "2000"}
    machine.run("msiexec.exe", "/x", h.windows_path(packages[0]), "/qn")
    assert all_settings(machine) == {"DefaultAutoUpdate": "False", "EnableToolbar": "0"}
    assert not folder.exists()
