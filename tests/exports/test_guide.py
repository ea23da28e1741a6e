"""What the guide says that other programs print of exports."""
import pathlib
import re
import subprocess
import sys

import pytest

GUIDE = pathlib.Path(__file__).resolve().parents[2] / "docs/guides/exporting.md"
LINES = r"((?:(?!```).*\n)*)```\n"
EXAMPLES = re.findall(rf"^```(python|matlab)\n{LINES}\n```\n{LINES}", GUIDE.read_text(), re.MULTILINE)
NUMBER = re.compile(r"\d[\d.e+-]*")


def words(line):
    return " ".join(NUMBER.sub("#", line).split())


@pytest.fixture(scope="module")
def folder(zmxf, demo, tmp_path_factory):
    made = tmp_path_factory.mktemp("guide")
    for suffix, name in {"h5": "hdf5", "mat": "mat", "json": "json"}.items():
        zmxf("export", demo, "--to", name, "-o", made / f"demo.{suffix}")
    return made


@pytest.mark.parametrize("language, program, shown", EXAMPLES, ids=[language for language, *_ in EXAMPLES])
def test_prints_what_the_guide_shows(folder, language, program, shown):
    command = [sys.executable, "-c"] if language == "python" else ["octave-cli", "--quiet", "--no-init-file", "--eval"]
    done = subprocess.run([*command, program], cwd=folder, capture_output=True, text=True, check=False)
    printed = iter([words(line) for line in done.stdout.splitlines()])
    missing = [line for line in shown.splitlines() if line.strip() not in ("", "...") and words(line) not in printed]
    assert missing == [], done.stdout + done.stderr


def test_finds_the_examples():
    assert [language for language, *_ in EXAMPLES] == ["python", "matlab", "python"]
