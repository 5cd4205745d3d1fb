"""What the viewer shows of the sample mailbox, for raw lines as the stand-in engine writes them."""

import subprocess
import sys
from pathlib import Path

import pytest
import related

ROOT = Path(__file__).resolve().parents[2]
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
        command = [sys.executable, ROOT / "standins/engine/related.py", store]
        output = subprocess.run(command, input=lines, stdout=subprocess.PIPE, check=True, encoding="utf-8").stdout
        return [block.splitlines() for block in output.split("\n\n")[:-1]]

    return show


def document(preamble, *texts, handle=7, eod="1"):
    yield f"message {handle} <pre_send_document {preamble}"
    for emphasis, text in texts:
        yield f'message {handle} <send_document emphasis="{emphasis}" doc="{text}" docId="D" docPath="/" docName="x" />'
    if eod:
        yield f'message {handle} <eod docId="D" shouldProcess="{eod}"/>'


def mail(title, sender, *texts, handle=7, eod="1"):
    names = f'title="{title}"  id="{handle}"  refresh="true"  docId="D"  docPath="/" docName="{title}" spanCnt="100"'
    people = f'type="email"  sender="{sender}"  recipient="Paul"  buttonClicked="0" />'
    return document(f"{names}  {people}", *texts, handle=handle, eod=eod)


def test_finds_what_the_mailbox_holds_on_a_document(show):
    selected = ("selected", "the signed &lt;order&gt; before Thursday")
    contact = document('type="contact" title="Søren Kjær"  id = "7"  refresh=', ("high", "Søren Kjær Auditor"))
    plain, chosen, person = show(
        mail(BUDGET, "Anna Weber", *BODY), mail(BUDGET, "Anna Weber", *BODY, selected), contact
    )
    assert plain[0] == BUDGET + " – Anna Weber"
    assert plain[1] == "1  Plan for the spring campaign – Anna Weber – 2003-03-11"
    assert not any(BUDGET in line for line in plain[1:]), "the document itself"
    assert chosen[1] == "selected: [the signed <order> before Thursday]"
    assert chosen[2].startswith("1  Your slot at the press – Katrin Vogel – 2003-")
    assert "until [Thursday]; without the [signed] [order] we must" in chosen[3]
    assert {line[3:].partition(" – 2003")[0] for line in (person[1], person[3])} == {
        "Project review moved to Wednesday – Søren Kjær",
        "Open points of the Beacon project – Søren Kjær",
    }
    assert all(line.strip() for block in (plain, chosen, person) for line in block)


def item(subject, body, sender="Bo"):
    sent = "Tue, 11 Mar 2003 10:00:00 +0100"
    return {"class": "mail", "subject": subject, "body": body, "senderName": sender, "sent": sent}


def found(items, title, text):
    """What a mailbox of these items and others holds on a mail."""
    mailbox = related.Mailbox([*(item(f"Other {n}", f"Something else {n}") for n in range(20)), *items])
    document = related.Document(title, "Bo")
    document.texts.append(("low", text))
    return [(hit.title, excerpt) for hit, excerpt in mailbox.find(document)]


def test_lists_each_thread_once_and_never_the_mail_itself_or_its_copies():
    plan = "The parade starts at noon beside the lighthouse"
    replies = [item(f"{prefix}Parade", f"{plan}, reply {prefix}", "Ann") for prefix in ("", "Re: ", "AW: Re: ")]
    hits = found([*replies, item("Parade", plan), item("Parade", plan), item("Route", plan)], "Parade", plan)
    assert len(hits) == 2 and "Route" in [title for title, _ in hits]
    long_subject = "Lighthouse " * 5000
    assert found([item(long_subject, plan)], long_subject[:4096], plan) == []


def test_finds_east_asian_text_by_pairs():
    [(title, excerpt)] = found([item("会議", "来週の東京会議の資料を送ります。")], "予定", "東京で会議を開きます")
    assert title == "会議" and related.SHARED + "東京会議" in excerpt


def test_gives_way_to_a_newer_document(show):
    half = mail(BUDGET, "Anna Weber", *BODY, eod="")
    other_window = mail("Lunch?", "Rita Olsen", handle=8, eod="0")
    assert [block[0] for block in show(half, other_window, mail("Catering", "Bo"))] == ["Catering – Bo"]
    end = ['message 7 <exit id="7"/>', 'message 7 <eod docId="D" shouldProcess="1"/>']
    assert show(mail(BUDGET, "Anna Weber", *BODY, eod=""), end) == []


def test_a_subject_deceives_neither_reader_nor_terminal(show):
    forged = 'x"  sender="Boss"  recipient="You"  buttonClicked="1" /> y \x1b[2J'
    assert show(mail(forged, "Bo"))[0][0] == f"{forged} – Bo".replace("\x1b", " ")
