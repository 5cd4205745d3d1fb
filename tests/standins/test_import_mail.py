"""What the importer makes of good, odd and broken files."""

import importlib.util
import json
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
SPEC = importlib.util.spec_from_file_location("import_mail", ROOT / "standins/outlook/import_mail.py")
import_mail = importlib.util.module_from_spec(SPEC)
SPEC.loader.exec_module(import_mail)


@pytest.fixture(name="imported")
def fixture_imported(tmp_path, capsys):
    """Imports a folder, to which it adds files; returns the items and what was said."""

    def imported(folder, files=()):
        for name in files:
            path = folder / name
            path.parent.mkdir(exist_ok=True)
            path.write_bytes(files[name])
        store = tmp_path / "store.json"
        assert import_mail.main([str(folder), str(store)]) == 0
        return json.loads(store.read_text(encoding="utf-8"))["items"], capsys.readouterr().err

    return imported


def mail(body, *headers):
    head = ["From: Ann <ann@x.example>", "To: Bob <bob@x.example>", *headers]
    return "\r\n".join(head).encode("latin-1") + b"\r\n\r\n" + body


def test_sample_mailbox(imported):
    items, errors = imported(ROOT / "standins/demo/mailbox")
    assert errors == "import_mail: 21 items, 0 files skipped\n"
    items = {item["file"]: item for item in items}
    assert items["05-japanese.eml"]["subject"] == "出張の予定"
    assert items["06-russian.eml"]["body"].startswith("Здравствуйте, Пауль!\r\n\r\nДоговор подписан")
    assert items["11-html-latin2.eml"]["senderName"] == "Łukasz Wójcik"
    newsletter = items["02-newsletter.eml"]["body"]
    opening = "What to plant in March\r\n\r\nThe ground is warm enough for broad beans and early peas. "
    assert newsletter.startswith(opening)
    assert "\r\nWeek 10\tprune the roses\r\nWeek 11\t" in newsletter
    assert items["contacts/soeren-kjaer.vcf"]["lastName"] == "Kjær"


def test_entry_ids_are_stable_and_tell_copies_apart(imported, tmp_path):
    with_mark = b"\xef\xbb\xbf" + mail(b"one\ntwo\r\n")  # as some programs save text
    files = {"a.eml": mail(b"x\r\n"), "sub/b.eml": mail(b"x\r\n"), "c.eml": with_mark}
    first, second = (imported(tmp_path, files)[0] for _ in range(2))
    assert [item["file"] for item in first] == ["a.eml", "c.eml", "sub/b.eml"]
    assert len({item["entryId"] for item in first + second}) == 3
    assert first[1]["body"] == "one\r\ntwo\r\n"


@pytest.mark.parametrize(
    "name, data, field, expected",
    [
        ("empty.eml", b"", "subject", []),
        ("cut.vcf", b"BEGIN:VCARD\r\nVERSION:3.0\r\n", "subject", []),
        ("raw.eml", mail(b"text\r\n", "Subject: Gr\u00fc\u00dfe"), "subject", ["Grüße"]),
        ("name.eml", mail(b"f\xfcr\r\n", "Content-Type: text/plain; charset=x-unknown"), "body", ["für\r\n"]),
        ("byte.eml", mail(b"a\xffb\r\n", "Content-Type: text/plain; charset=us-ascii"), "body", ["a\ufffdb\r\n"]),
    ],
)
def test_odd_files_are_named_and_kept_as_far_as_possible(imported, tmp_path, name, data, field, expected):
    items, errors = imported(tmp_path, {name: data, "sub/good.eml": mail(b"fine\r\n", "Subject: ok")})
    assert [item[field] for item in items[:-1]] == expected and items[-1]["subject"] == "ok"
    assert f"import_mail: {name}: " in errors
    assert f"{len(items)} items, {2 - len(items)} files skipped" in errors
