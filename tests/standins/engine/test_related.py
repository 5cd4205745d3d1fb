"""What the viewer shows of the sample mailbox, for raw lines as the stand-in engine writes them."""

import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[3]
BUDGET = "RE: Re: Budget for the spring campaign"
BODY = [("high", " Budget for the spring campaign"), ("low", "Hold the slot!"), ("medium", r"\nTrade fair in Hanover.")]


@pytest.fixture(name="show", scope="module")
def fixture_show(tmp_path_factory):
    """Gives for documents, in raw lines, the lines that are shown of each."""
    store = tmp_path_factory.mktemp("related") / "store.json"
    importer = ROOT / "standins/outlook/import_mail.py"
    subprocess.run([sys.executable, importer, ROOT / "standins/demo/mailbox", store], check=True)

    def show(*documents):
        lines = "".join(line + "\n" for document in documents for line in document)
        output = subprocess.run(
            [sys.executable, ROOT / "standins/engine/related.py", store],
            input=lines.encode(),
            stdout=subprocess.PIPE,
            check=True,
        ).stdout
        return [block.splitlines() for block in output.decode().split("\n\n")[:-1]]

    return show


def document(handle, preamble, *texts, eod="1"):
    yield f"message {handle} <pre_send_document {preamble}"
    for emphasis, text in texts:
        yield f'message {handle} <send_document emphasis="{emphasis}" doc="{text}" docId="D" docPath="/" docName="x" />'
    if eod:
        yield f'message {handle} <eod docId="D" shouldProcess="{eod}"/>'


def mail(handle, title, sender, *texts, eod="1"):
    return document(
        handle,
        f'title="{title}"  id="{handle}"  refresh="true"  docId="D"  docPath="/" docName="{title}" '
        f'spanCnt="100"  type="email"  sender="{sender}"  recipient="Paul"  buttonClicked="0" />',
        *texts,
        eod=eod,
    )


def test_finds_what_the_mailbox_holds_on_a_document(show):
    selected = ("selected", "the signed &lt;order&gt; before Thursday")
    contact = document(7, 'type="contact" title="Søren Kjær"  id = "7"  refresh=', ("high", "Søren Kjær Auditor"))
    plain, chosen, person = show(
        mail(7, BUDGET, "Anna Weber", *BODY), mail(7, BUDGET, "Anna Weber", *BODY, selected), contact
    )
    assert plain[0] == BUDGET + " – Anna Weber"
    assert plain[1] == "1  Plan for the spring campaign – Anna Weber"
    assert not any(line.endswith(BUDGET + " – Anna Weber") for line in plain[1:]), "the document itself"
    assert chosen[1] == "selected: [the signed <order> before Thursday]"
    assert chosen[2] == "1  Your slot at the press – Katrin Vogel"
    assert chosen[3].strip().startswith("…I can hold that slot until [Thursday]; without the [signed] [order] we must")
    assert {person[1][3:], person[3][3:]} == {
        "Project review moved to Wednesday – Søren Kjær",
        "Open points of the Beacon project – Søren Kjær",
    }


def test_gives_way_to_a_newer_document(show):
    half = mail(7, BUDGET, "Anna Weber", *BODY, eod="")
    other_window = mail(8, "Lunch?", "Rita Olsen", eod="0")
    assert [block[0] for block in show(half, other_window, mail(7, "Catering", "Bo"))] == ["Catering – Bo"]
    end = ['message 7 <exit id="7"/>', 'message 7 <eod docId="D" shouldProcess="1"/>']
    assert show(mail(7, BUDGET, "Anna Weber", *BODY, eod=""), end) == []


def test_a_subject_deceives_neither_reader_nor_terminal(show):
    forged = 'x"  sender="Boss"  recipient="You"  buttonClicked="1" /> y \x1b[2J'
    assert show(mail(7, forged, "Bo"))[0][0] == f"{forged} – Bo".replace("\x1b", " ")
