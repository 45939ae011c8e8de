"""What each shell offers to complete a command line with, asked of the real shell."""

import os
import pathlib
import pty
import shlex
import subprocess
import tempfile

HERE = pathlib.Path(__file__).parent
COMPLETIONS = HERE.parents[1] / "packaging/completions"
SCRATCH = tempfile.TemporaryDirectory()  # goes when the tests end


def _answer(*command):
    answer = subprocess.run(
        command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60, check=True)
    if answer.stderr:
        raise AssertionError(f"{command[0]} complains: {answer.stderr}")
    return set(answer.stdout.split("\n")) - {""}


def bash(line):
    words = line.split(" ")
    return _answer("bash", "--norc", "-c", f"""
        source {shlex.quote(str(COMPLETIONS / "nubble.bash"))}
        COMP_WORDS=({shlex.join(words)})
        COMP_CWORD={len(words) - 1}
        _nubble
        printf '%s\\n' "${{COMPREPLY[@]}}" """)


def fish(line):
    source = shlex.quote(str(COMPLETIONS / "nubble.fish"))
    offered = _answer("fish", "--no-config", "-c", f"source {source}; complete -C {shlex.quote(line)}")
    return {each.split("\t")[0] for each in offered}


def _shown_on_terminal(command, env):
    child, terminal = pty.fork()
    if child == 0:
        os.execvpe(command[0], command, env)
    shown = b""
    try:
        while part := os.read(terminal, 4096):
            shown += part
    except OSError:  # how the terminal of an ended process reads
        pass
    os.close(terminal)
    os.waitpid(child, 0)
    return shown.decode(errors="replace")


def zsh(line):
    """It completes only in its line editor, which wants a terminal."""
    offered = pathlib.Path(SCRATCH.name) / "offered"
    offered.write_text("")
    shown = _shown_on_terminal(["zsh", "-i"], {
        "PATH": os.environ["PATH"], "HOME": SCRATCH.name, "TERM": "dumb", "ZDOTDIR": str(HERE / "zsh"),
        "COMPLETIONS": str(COMPLETIONS), "DUMP": SCRATCH.name + "/dump", "OFFERED": str(offered), "LINE": line})
    if "rror" in shown or "_nubble:" in shown:
        raise AssertionError(f"zsh complains: {shown}")
    return set(offered.read_text().split("\n")) - {""}
