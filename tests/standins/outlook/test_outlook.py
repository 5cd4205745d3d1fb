"""The stand-in Outlook as an add-in meets it that has faults of its own (addin/test_addin.cpp)."""

import re

import beacon_harness as h
import pytest

CLASS = "{5D0B7A4E-1C0F-4B57-9B0D-1F6C3A1F5E21}"
SERVER = rf"Classes\CLSID\{CLASS}\InprocServer32"
VALUES = [
    (r"Classes\StandinTest.Addin\CLSID", "/ve", "REG_SZ", CLASS),
    (SERVER, "/ve", "REG_SZ", h.windows_path(h.BIN / "standin_test_addin.dll")),
    (SERVER, "/v ThreadingModel", "REG_SZ", "Apartment"),
    (r"Microsoft\Office\Outlook\Addins\StandinTest.Addin", "/v LoadBehavior", "REG_DWORD", "3"),
]
ITEMS = [
    {"class": "mail", "entryId": "A1", "subject": "Budget", "senderName": "Anna", "to": "Paul", "body": "One.\r\n"},
    {"class": "contact", "entryId": "C1", "fullName": "Anna Weber", "firstName": "Anna", "lastName": "Weber"},
]


class Run(h.Outlook):
    def after(self, start):
        """The lines that begin with this text, without it."""
        return [line[len(start) :] for line in self.lines if line.startswith(start)]


@pytest.fixture(scope="module", autouse=True)
def registered():
    for key, name, kind, data in VALUES:
        h.Machine(None).run("reg.exe", "add", rf"HKLM\Software\{key}", *name.split(), "/t", kind, "/d", data, "/f")


@pytest.fixture
def run(machine, monkeypatch, _programs):
    """Runs the program to its end over a mail and a contact. The add-in does wrong what `faults` asks for. Commands
    come from a script, and those in `typed` from standard input."""

    def run(code, commands, faults="", typed="", **options):
        monkeypatch.setenv("TEST_ADDIN", f" {faults} ")
        script = machine.folder / "script.txt"
        script.write_text(commands)
        program = Run(store=machine.store(ITEMS), script=script if commands else None, **options)
        _programs.append(program)
        if typed:
            program.send(typed)
        assert program.wait() == code
        return program

    return run


def test_starts_and_quits_in_order_and_finds_nothing_left(run):
    quit = run(0, "quit\n", strict_exit=True)
    start, end = ["OnConnection 1 custom", "Startup", "OnStartupComplete"], ["explorer Close", "Quit, no window"]
    shutdown = ["OnBeginShutdown", "OnDisconnection 0"]
    assert quit.after("addin: ") == start + end + shutdown
    assert {
        "references: none",
        "sinks: none",
        "PROP_OLK: none",
        "DllCanUnloadNow: S_OK (StandinTest.Addin)",
        "windows of StandinTest.Addin: none",
        "library of StandinTest.Addin: unloaded",
        "hooks: none called after the unload",
        "end 0",
    } <= set(quit.lines)

    fast = run(0, "quit\n", fast_shutdown=True)
    assert fast.after("addin: ") == start + end
    assert fast.after("DllCanUnloadNow") == []
    late = run(0, "quit\n", no_startup_event=True)
    assert late.after("addin: ") == [start[0], start[2], end[1], *shutdown]


def test_reports_what_is_left(run):
    leaks = "leak-explorer leak-selection leak-instance leak-item leak-inspector"
    loose = run(0, "open Budget\nquit\n", leaks)
    assert loose.after("references: ") == [
        'MailItem "Budget": 1, COMAddIn StandinTest.Addin: 1, Explorer 1: 1, Selection: 1, Inspector 1: 1'
    ]
    assert loose.after("addin: OnDisconnection") == [" 0"], "it goes on all the same"
    strict = run(3, "quit\n", "leak-explorer", strict_exit=True, strict_timeout=0.3)
    assert strict.after("strict exit: held back by references: ") == ["Explorer 1: 1"]
    assert strict.after("addin: On")[-1] == "BeginShutdown"

    # Windows ends the program at the call of an unloaded hook; Wine lets it go on, and it says so.
    left = run(4, "quit\n", "keep-window keep-property keep-hook")
    assert left.after("windows of StandinTest.Addin: ") == ["TestAddinWindow"]
    assert re.fullmatch(r"\d+=0x\w+", *left.after("PROP_OLK: "))
    assert left.after("hooks: none") == []


def test_raises_the_events_of_its_version(run):
    older = run(0, "open 1\ndelete 1\n", outlook_version=9)
    assert older.after("addin: inspector ") == ["new, no window", "Activate", "item Close", "Close"]
    newer = run(0, "open 1\nactivate explorer\nactivate Budget\nactivate Budget\ndelete 1\n", outlook_version=10)
    assert newer.after("addin: inspector ") == [
        *("new, no window", "Activate", "Deactivate", "Activate"),
        *("item BeforeDelete", "item Close", "Close"),
    ]
    selections = run(0, 'select 1\nselect "Anna Weber",1\nselect none\n')
    assert selections.after("addin: SelectionChange ") == ["1", "1", "2", "2", "0", "0"]


def test_keeps_a_window_whose_close_is_cancelled_and_itself(run):
    kept = run(2, "open 1\nclose\nquit\n", "cancel")
    assert len(kept.after("close cancelled inspector 1")) == 3, "by hand, by the quit, at the end of the script"
    assert len(kept.after("quit cancelled")) == 2


def test_quits_while_a_message_box_is_open(run):
    quit = run(0, "wait 500\nboxes\nquit\n", "box")
    assert quit.after("box ") == ['"Test add-in"']
    assert quit.after("addin: box") == [" closed"]


def test_says_what_is_wrong_and_ends_only_for_a_script(run):
    script = run(2, "# fine\n\nselect 9\nselect 1\n")
    assert script.after("error: ") == ["line 3: there is no item 9 (items: 2)"]
    assert script.after("addin: SelectionChange") == []
    wrong = {
        "jump": 'unknown command "jump"; "help" lists them', 'open "Bud': "quote is not closed",
        "close inspector 1": "there is no inspector 1", "quit later": 'unexpected "later"',
        'edit 1 replace "none of it" x': 'the body does not contain "none of it"', "items all": 'unexpected "all"',
    }  # fmt: skip
    assert run(0, "", typed="\n".join([*wrong, "quit"])).after("error: ") == [*wrong.values()]
    option = h.Program("standin_outlook.exe", "--fast")
    assert option.wait() == 1
    assert option.matching("'fast' does not exist")


def test_interactive_continues_with_standard_input_after_the_script(run):
    program = run(0, "say scripted\n", typed="say typed\nquit", interactive=True)
    assert program.after("say ") == ["scripted", "typed"]
