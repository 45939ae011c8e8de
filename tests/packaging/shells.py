"""What each shell offers to complete a command line with, asked of the real shell."""

import os
import pathlib
import shlex
import subprocess
import tempfile

HERE = pathlib.Path(__file__).parent
COMPLETIONS = HERE.parents[1] / "packaging/completions"
SCRATCH = tempfile.TemporaryDirectory()  # goes when the tests end


def _said(*command, **env):
    answer = subprocess.run(
        command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60, check=True, env=env or None)
    if answer.stderr:
        raise AssertionError(f"{command[0]} complains: {answer.stderr}")
    return answer.stdout


def _words(text):
    return set(text.split("\n")) - {""}


def bash(line):
    words = line.split(" ")
    return _words(_said("bash", "--norc", "-c", f"""
        source {shlex.quote(str(COMPLETIONS / "nubble.bash"))}
        COMP_WORDS=({shlex.join(words)})
        COMP_CWORD={len(words) - 1}
        _nubble
        printf '%s\\n' "${{COMPREPLY[@]}}" """))


def fish(line):
    source = shlex.quote(str(COMPLETIONS / "nubble.fish"))
    offered = _said("fish", "--no-config", "-c", f"source {source}; complete -C {shlex.quote(line)}")
    return {each.split("\t")[0] for each in _words(offered)}


def zsh(line):
    """It completes only in its line editor, which wants a terminal."""
    offered = pathlib.Path(SCRATCH.name) / "offered"
    offered.write_text("")
    shown = _said(
        "script", "-qc", "zsh -i", "/dev/null", PATH=os.environ["PATH"], HOME=SCRATCH.name, TERM="dumb",
        ZDOTDIR=str(HERE / "zsh"), COMPLETIONS=str(COMPLETIONS), DUMP=SCRATCH.name + "/dump", OFFERED=str(offered),
        LINE=line)
    if "rror" in shown or "_nubble:" in shown:
        raise AssertionError(f"zsh complains: {shown}")
    return _words(offered.read_text())
