#!/usr/bin/env python3
"""The completions that bash and zsh offer for the tool's command line."""

import re
import unittest

from scene import PROJECT, TOOL, SceneTest, run

COMPLETION = PROJECT / "packaging/completion"
OPTIONS = {"--package", "--states", "--search"}

# Calls the function as bash does; compopt is replaced as it works only while bash completes.
IN_BASH = """
. "$1"; shift
compopt() { :; }
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_lumo_exs_import
printf '%s\\n' "${COMPREPLY[@]}"
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
zpty -w -n shell "lumo-exs-import $2"$'\\t'
zpty -r shell offers '*THROUGH*'
print -r -- "$offers"
"""


class Completion(SceneTest):
    def setUp(self):
        super().setUp()
        (self.folder / "Two words.EXS").touch()
        (self.folder / "notes.txt").touch()

    def bash(self, *words):
        """The completions in bash for the last of these words."""
        done = run(["bash", "-c", IN_BASH, "bash", COMPLETION / "lumo-exs-import.bash",
                    "lumo-exs-import", *words], cwd=self.folder)
        self.assertEqual(done.stderr, b"")
        return set(done.stdout.decode().split("\n")) - {""}

    def zsh(self, typed):
        """The completions in zsh after the tool's name and this text were typed."""
        done = run(["zsh", "-f", "-c", IN_ZSH, "zsh", COMPLETION, typed], cwd=self.folder)
        return set(re.findall(r"OFFER:(.+?)\r*$", done.stdout.decode(), re.MULTILINE))

    def test_of_bash_offers_the_options_that_the_usage_names(self):
        self.assertEqual(self.bash("--"), OPTIONS)
        self.assertEqual(self.bash("--s"), {"--states", "--search"})
        self.assertEqual(set(re.findall(r"--[a-z]+", run([TOOL]).stderr.decode())), OPTIONS)

    def test_of_bash_offers_folders_as_values(self):
        for option in OPTIONS:
            self.assertEqual(self.bash(option, ""), {"glass"})

    def test_of_bash_offers_folders_and_instruments(self):
        self.assertEqual(self.bash(""), {"glass", "Two words.EXS"})
        self.assertEqual(self.bash("--package", "Show.lumo", "glass/"),
                         {"glass/Glass.aupreset", "glass/Glass Chimes.exs"})

    def test_of_bash_is_tied_to_the_tool(self):
        done = run(["bash", "-c", '. "$0"; complete -p lumo-exs-import',
                    COMPLETION / "lumo-exs-import.bash"])
        self.assertEqual(done.stdout, b"complete -F _lumo_exs_import lumo-exs-import\n")

    def test_of_zsh_offers_the_options(self):
        self.assertEqual(self.zsh("--"), OPTIONS)

    def test_of_zsh_offers_folders_as_values(self):
        self.assertEqual(self.zsh("--states "), {"glass"})

    def test_of_zsh_offers_instruments(self):
        offers = self.zsh("glass/")
        self.assertLessEqual({"Glass.aupreset", "Glass\\ Chimes.exs"}, offers)
        self.assertNotIn("breath.wav", offers)
        offers = self.zsh("")
        self.assertLessEqual({"glass", "Two\\ words.EXS"}, offers)
        self.assertNotIn("notes.txt", offers)


if __name__ == "__main__":
    unittest.main()
