#!/usr/bin/env python3
"""The completions that bash and zsh offer for the tool's command line."""

import re
import unittest

from completions import COMPLETION, completions_in_bash, completions_in_zsh
from lumo_testing import GlassTest, built_program, run

TOOL = built_program("LUMO_TOOL")
OPTIONS = {"--package", "--states", "--search"}


class Completion(GlassTest):
    def setUp(self):
        super().setUp()
        (self.folder / "Two words.EXS").touch()
        (self.folder / "notes.txt").touch()

    def bash(self, *words):
        return completions_in_bash("lumo-exs-import", words, self.folder)

    def zsh(self, typed):
        return completions_in_zsh("lumo-exs-import", typed, self.folder)

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
