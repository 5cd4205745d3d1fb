"""The programs of examples/: the smallest engine and the script that sends orders through it."""

import re
from pathlib import Path

import adapter as a
from adapter import h

WATCH = Path(__file__).resolve().parents[2] / "examples" / "watch.vbs"


class SmallestEngine(h.Engine):
    """Prints messages and controls as the stand-in does."""

    def __init__(self):
        h.Program.__init__(self, "smallest_engine.exe")


def test_engine_and_script(machine, engine, outlook):
    body = "Grüße, 1 < 2 & \"so\".\r\nThe second line is longer than the first one.\r\n"
    items = [a.mail(1, "Lunch é \\ soup", body), a.mail(2, "Two")]
    standin, program, _ = a.start(machine, engine, outlook, items)
    program.send("select 1")
    expected = a.comparable(a.document(standin)[0])
    assert len(expected) > 3
    program.quit()
    standin.quit()

    machine.run(h.windows_path(h.BIN / "smallest_engine.exe"), "/regserver")
    sample = SmallestEngine()
    program = outlook(store=machine.store(items))
    hello = sample.message("<hello", 20)
    program.send("select 1")
    assert a.comparable(a.document(sample)[0]) == expected

    def script(*words):
        return machine.run("cscript.exe", "//nologo", h.windows_path(WATCH), *words)[1]

    assert '<BUTTON_CLICK id="0"/> to 1 windows' in script("click")
    assert 'buttonClicked="1"' in a.document(sample)[0][0]
    shown = script("off", "0")
    assert len(re.findall("^message .*<pre_send_document ", shown, re.MULTILINE)) == 2, "all that came so far"
    program.send("select 2")
    sample.expect_nothing("<pre_send_document", 2 * a.DELAY / 1000)
    script("on")
    assert 'docName="Two"' in a.document(sample)[0][0]
    script("exit")
    assert sample.message("<exit", kind="control") == sample.message("<exit") == hello.replace("hello", "exit")
    assert sample.message("<hello") == hello
    script("quit")
    assert sample.wait() == 0
