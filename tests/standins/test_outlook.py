"""The stand-in Outlook: the order of its calls and events, its report, and its commands."""

import re

import adapter as a
import beacon_harness as h
import pytest

ORDER = [
    *("OnConnection mode 1", "Startup", "OnStartupComplete"),
    *("Close explorer", "Quit", "OnBeginShutdown", "OnDisconnection mode 0"),
]


@pytest.fixture
def run(machine, outlook):
    """Runs commands, from a script or typed, over a mail and a contact; returns the lines of the ended program."""

    def run(code, commands, typed="", **options):
        script = machine.folder / "script.txt"
        script.write_text(commands)
        store = machine.store([a.mail(1), a.contact(2)])
        program = outlook(store=store, script=script if commands else None, **options)
        program.send(typed)
        assert program.wait() == code
        return program.lines

    return run


def after(lines, start):
    """The lines that begin with this text, without it."""
    return [line[len(start) :] for line in lines if line.startswith(start)]


def steps(lines, wanted):
    """The calls to the add-in and the events with these names, in order, each with its window or mode."""
    step = rf"^(?:event|add-in \S+:) ((?:{wanted})(?: mode \d| [a-z]+\b(?!=))?)"
    return re.findall(step, "\n".join(lines), re.MULTILINE)


def test_starts_and_quits_in_order(machine, run):
    a.prepare(machine)
    for options, left_out in (
        ({}, ()),
        ({"fast_shutdown": True}, ("OnBeginShutdown", "OnDisconnection mode 0")),
        ({"no_startup_event": True}, ("Startup",)),
    ):
        lines = run(0, "quit\n", **options)
        assert steps(lines, r"On\w+|Startup|Quit|Close") == [step for step in ORDER if step not in left_out], options


def test_raises_the_events_of_its_version(run):
    older = run(0, "open 1\ndelete 1\n", outlook_version=9)
    assert steps(older, "BeforeDelete|Close")[:2] == ["Close", "Close inspector"]
    newer = run(0, "open 1\nactivate explorer\nactivate 1\nactivate 1\ndelete 1\n", outlook_version=10)
    assert [step for step in steps(newer, ".*ctivate|BeforeDelete|Close") if "explorer" not in step] == [
        *("Activate inspector", "Deactivate inspector", "Activate inspector"),
        *("BeforeDelete", "Close", "Close inspector"),
    ]
    selected = run(0, 'select 1\nselect "Ann Lee",1\nselect none\n')
    assert len(steps(selected, "SelectionChange")) == 6, "each one twice"


def test_shows_what_the_add_in_holds_and_delays_its_calls(machine, run):
    a.prepare(machine)
    lines = run(0, "references\nprop?\nunload?\nhangcall 1 700\ndisconnect\n")
    held = r"references: App|sinks: App|PROP_OLK: \d+=0x|DllCan.*: S_FALSE|windows of .*frmHidden"
    for pattern in held.split("|"):
        assert re.search(f"^{pattern}", "\n".join(lines), re.MULTILINE), pattern
    [taken] = after(lines, f"add-in {h.PROG_ID}: OnDisconnection mode 1 0x00000000 in ")
    assert int(taken.removesuffix(" ms")) >= 700


def test_says_what_is_wrong_and_ends_only_for_a_script(run):
    script = run(2, "# fine\n\nselect 9\nselect 1\n")
    assert after(script, "error: ") == ["line 3: there is no item 9 (items: 2)"]
    assert steps(script, "SelectionChange") == []
    wrong = {
        "jump": 'unknown command "jump"; "help" lists them', 'open "Bud': "quote is not closed",
        "close inspector 1": "there is no inspector 1", "quit later": 'unexpected "later"',
        'edit 1 replace "none of it" x': 'the body does not contain "none of it"', "items all": 'unexpected "all"',
    }  # fmt: skip
    assert after(run(0, "", "\n".join([*wrong, "quit"])), "error: ") == [*wrong.values()]
    assert h.Program("standin_outlook.exe", "--fast").wait() == 1, "an unknown option"


def test_interactive_continues_with_standard_input_after_the_script(run):
    assert after(run(0, "say scripted\n", "say typed\nquit", interactive=True), "say ") == ["scripted", "typed"]


def test_reports_what_an_add_in_leaves_behind(machine, run):
    """The last test, because the add-in stays registered."""
    machine.run("regsvr32.exe", "/s", h.windows_path(h.BIN / "faulty_addin.dll"))
    # Windows ends the program at the call of an unloaded hook; Wine lets it go on, and it says so.
    loose = run(4, "boxes\nquit\n")
    assert after(loose, "box ") == ['"Faulty add-in"']
    assert after(loose, "references: ") == ["Application: 1"]
    strict = run(3, "quit\n", strict_exit=True, strict_timeout=0.3)
    assert after(strict, "strict exit: held back by references: ") == ["Application: 1"]
    assert steps(strict, "OnDisconnection") == []
