"""Shared by the tests of the shell completions: the completions that bash and zsh offer."""

import re

from lumo_testing import PROJECT, require_terminals, run

COMPLETION = PROJECT / "packaging/completion"

# Calls the function as bash does; compopt is replaced as it works only while bash completes.
IN_BASH = """
. "$1"; shift
compopt() { :; }
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_%(function)s
printf '%%s\\n' "${COMPREPLY[@]}"
"""

# A zsh on its own pseudo-terminal completes what is typed. compadd, which adds completions, prints
# them first, and the completion widget prints THROUGH when it has finished.
IN_ZSH = """
zmodload zsh/zpty
zpty shell 'TERM=dumb zsh -f -i'
zpty -w shell "stty -echo; fpath=(${(q)1} \\$fpath); autoload -Uz compinit; compinit -u -D"
zpty -w shell 'compadd() {
    builtin compadd -O offers "$@"; print -rl -- OFFER:${^offers}; builtin compadd "$@" }'
zpty -w shell 'through() { _main_complete; print THRO""UGH }; zle -C through complete-word through'
zpty -w shell 'bindkey "^I" through; print REA""DY'
zpty -r shell ready '*READY*'
zpty -w -n shell "$2"$'\\t'
zpty -r shell offers '*THROUGH*'
print -r -- "$offers"
"""


def completions_in_bash(program, words, folder):
    """The completions of the last of these words after the program's name, in this folder."""
    script = IN_BASH % {"function": program.replace("-", "_")}
    done = run(["bash", "-c", script, "bash", COMPLETION / f"{program}.bash", program, *words],
               cwd=folder)
    assert (done.returncode, done.stderr) == (0, b""), done
    return set(done.stdout.decode().split("\n")) - {""}


def completions_in_zsh(program, typed, folder):
    """The completions after the program's name and this text were typed in this folder."""
    require_terminals()
    done = run(["zsh", "-f", "-c", IN_ZSH, "zsh", COMPLETION, f"{program} {typed}"], cwd=folder)
    return set(re.findall(r"OFFER:(.+?)\r*$", done.stdout.decode(), re.MULTILINE))
