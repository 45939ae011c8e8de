"""What each shell offers to complete a command line with, asked of the real shell."""

import os
import pathlib
import pty
import shlex
import subprocess
import tempfile

HERE = pathlib.Path(__file__).parent
COMPLETIONS = HERE.parents[1] / "packaging/completions"


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


def zsh(line):
    """It completes only in its line editor, which wants a terminal."""
    with tempfile.TemporaryDirectory() as folder:
        offered = pathlib.Path(folder) / "offered"
        offered.touch()
        env = {
            "PATH": os.environ["PATH"], "HOME": folder, "TERM": "dumb", "ZDOTDIR": str(HERE / "zsh"),
            "COMPLETIONS": str(COMPLETIONS), "OFFERED": str(offered), "LINE": line}
        child, terminal = pty.fork()
        if child == 0:
            os.execvpe("zsh", ["zsh", "-i"], env)
        shown = b""
        try:
            while part := os.read(terminal, 4096):
                shown += part
        except OSError:  # how the terminal of an ended process reads
            pass
        os.close(terminal)
        os.waitpid(child, 0)
        if b"rror" in shown or b"_nubble:" in shown:
            raise AssertionError(f"zsh complains: {shown.decode()}")
        return set(offered.read_text().split("\n")) - {""}
