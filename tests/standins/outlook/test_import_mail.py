"""What the importer makes of good, odd and broken files."""

import importlib.util
import json
import shutil
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[3]
SPEC = importlib.util.spec_from_file_location("import_mail", ROOT / "standins/outlook/import_mail.py")
import_mail = importlib.util.module_from_spec(SPEC)
SPEC.loader.exec_module(import_mail)


@pytest.fixture(name="run")
def fixture_run(tmp_path, capsys):
    """Imports files given as name=bytes; returns the items and what was said."""

    def run(files):
        folder = tmp_path / "mail"
        for name, data in files.items():
            path = folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(data)
        store = tmp_path / "store.json"
        assert import_mail.main([str(folder), str(store)]) == 0
        return json.loads(store.read_text(encoding="utf-8"))["items"], capsys.readouterr().err

    return run


def mail(body, *headers):
    head = ["From: Ann <ann@x.example>", "To: Bob <bob@x.example>", *headers]
    return "\r\n".join(head).encode("latin-1") + b"\r\n\r\n" + body


def test_sample_mailbox(tmp_path, capsys):
    folder = tmp_path / "mailbox"
    shutil.copytree(ROOT / "standins/demo/mailbox", folder)
    store = tmp_path / "store.json"
    assert import_mail.main([str(folder), str(store)]) == 0
    assert capsys.readouterr().err == "import_mail: 21 items, 0 files skipped\n"
    items = {item["file"]: item for item in json.loads(store.read_text(encoding="utf-8"))["items"]}
    assert items["05-japanese.eml"]["subject"] == "出張の予定"
    assert items["06-russian.eml"]["body"].startswith("Здравствуйте, Пауль!\r\n\r\nДоговор подписан")
    assert items["11-html-latin2.eml"]["senderName"] == "Łukasz Wójcik"
    assert items["02-newsletter.eml"]["body"].startswith(
        "What to plant in March\r\n\r\nThe ground is warm enough for broad beans and early peas. Sow every two weeks"
    )
    assert "\r\nWeek 10\tprune the roses\r\nWeek 11\t" in items["02-newsletter.eml"]["body"]
    assert items["contacts/soeren-kjaer.vcf"]["lastName"] == "Kjær"
    assert len({item["entryId"] for item in items.values()}) == 21


def test_entry_ids_are_stable_and_tell_copies_apart(run):
    with_mark = b"\xef\xbb\xbf" + mail(b"one\ntwo\r\n")  # as some programs save text
    files = {"a.eml": mail(b"x\r\n"), "sub/b.eml": mail(b"x\r\n"), "c.eml": with_mark}
    first, _ = run(files)
    again, _ = run(files)
    assert [item["file"] for item in first] == ["a.eml", "c.eml", "sub/b.eml"]
    assert len({item["entryId"] for item in first}) == 3
    assert first[1]["body"] == "one\r\ntwo\r\n"
    assert [item["entryId"] for item in first] == [item["entryId"] for item in again]


@pytest.mark.parametrize(
    "name, data, said",
    [("empty.eml", b"", "no mail headers"), ("cut.vcf", b"BEGIN:VCARD\r\nVERSION:3.0\r\n", "skipped")],
)
def test_bad_files_are_named_and_left_out(run, name, data, said):
    items, errors = run({name: data, "good.eml": mail(b"fine\r\n", "Subject: ok")})
    assert [item["subject"] for item in items] == ["ok"]
    assert f"import_mail: {name}: " in errors and said in errors
    assert "1 items, 1 files skipped" in errors


@pytest.mark.parametrize(
    "headers, body, field, expected",
    [
        (["Subject: Gr\u00fc\u00dfe"], b"text\r\n", "subject", "Grüße"),  # raw Latin-1 in a header
        (["Content-Type: text/plain; charset=x-unknown"], "für\r\n".encode("latin-1"), "body", "für\r\n"),
        (["Content-Type: text/plain; charset=us-ascii"], b"a\xffb\r\n", "body", "a\ufffdb\r\n"),
    ],
)
def test_undeclared_characters_are_kept_and_told(run, headers, body, field, expected):
    items, errors = run({"odd.eml": mail(body, *headers)})
    assert items[0][field] == expected
    assert "import_mail: odd.eml: " in errors
