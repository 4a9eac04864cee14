#!/usr/bin/env python3
"""The changes that script/mutate makes to a source, and those that survive in a small project with
one function."""

import io
import subprocess
import tempfile
import textwrap
import unittest
from pathlib import Path

import changes
import mutate
import workbench


def described(source):
    """All changes of a source."""
    source = textwrap.dedent(source)
    return [change.describe(source) for change in changes.changes_of(source)]


def of_kind(kind, source):
    """The changes of one kind, without its name."""
    return [text.removeprefix(kind + ": ") for text in described(source) if text.startswith(kind)]


class Changes(unittest.TestCase):
    def test_boundaries_move_by_one(self):
        self.assertEqual(of_kind("boundary", "if (a < b && c >= d) {\n    f();\n}\n"),
                         ["< -> <=", ">= -> >"])

    def test_brackets_of_templates_are_no_boundaries(self):
        self.assertEqual(of_kind("boundary", "std::vector<int> v;\ntemplate <class T>\n"), [])

    def test_conditions_are_turned_round_whole_and_in_parts(self):
        self.assertEqual(of_kind("negation", "if (!a || b == c) {\n    return true;\n}\n"),
                         ["|| -> &&", "== -> !=", "true -> false", "!",
                          "!a || b == c -> !(!a || b == c)"])

    def test_numbers_are_one_more_and_one_less(self):
        self.assertEqual(of_kind("constant", "int x2 = 0x1F + 1'000;\n"),
                         ["0x1F -> (0x1F + 1)", "0x1F -> (0x1F - 1)",
                          "1'000 -> (1'000 + 1)", "1'000 -> (1'000 - 1)"])

    def test_statements_are_left_out_and_declarations_stay(self):
        source = """\
            void f() {
                int a = 1;
                a = 2;
                g(a, [] {
                    return 1;
                });
                ++a;
                break;
                return;
            }
            """
        self.assertEqual(of_kind("removed statement", source),
                         ["a = 2;", "g(a, [] { return 1; });", "++a;", "break;"])

    def test_statements_without_effect_stay(self):
        source = """\
            void f() {
                va_end(list);
                __builtin_prefetch(&all[i + 1]);
                all.names.reserve(16);
                names->reserve(g(a, b) + 16);
                all.names.clear();
            }
            """
        self.assertEqual(described(source), ["removed statement: all.names.clear();"])

    def test_branches_that_only_leave_are_left_out(self):
        source = """\
            void f() {
                if (a) {
                    return;
                }
                if (b) {
                    return;
                } else {
                    g();
                }
                if (c) {
                    g();
                }
            }
            """
        self.assertEqual(of_kind("removed branch", source), ["if (a) { return; }"])

    def test_neighbours_among_the_arguments_of_a_call_are_swapped(self):
        self.assertEqual(of_kind("swapped arguments", 'f(a, g(b, c), "x, y");\n'),
                         ["a, g(b, c) -> g(b, c), a", 'g(b, c), "x, y" -> "x, y", g(b, c)',
                          "b, c -> c, b"])

    def test_arguments_in_any_order_are_not_swapped(self):
        self.assertEqual(of_kind("swapped arguments", "std::min(a, b);\nstd::max(a, b, less);\n"),
                         ["a, b -> b, a", "b, less -> less, b"])

    def test_parameters_are_not_swapped(self):
        self.assertEqual(of_kind("swapped arguments", "int f(int a, const char* b);\n"), [])

    def test_what_a_function_returns_becomes_nothing(self):
        self.assertEqual(of_kind("return value", "return f(a, b);\nreturn {};\nreturn 0;\n"),
                         ["f(a, b) -> {}"])

    def test_comments_texts_and_preprocessor_lines_stay(self):
        self.assertEqual(described('// a < b\n#if A == 1\nf("1 < 2 && true");\n/* a == 1 */\n'), [])

    def test_a_change_names_its_line_and_changes_nothing_else(self):
        source = "int a;\nint b = 7; // 7\n"
        change = changes.changes_of(source)[0]
        self.assertEqual(change.line(source), 2)
        self.assertEqual(change.apply(source), "int a;\nint b = (7 + 1); // 7\n")


class Order(unittest.TestCase):
    def test_tests_named_like_a_source_are_near(self):
        program = workbench.Program("reading", [], {}, [], {
            "tests/platform/exs_reader_test.cpp", "tests/platform/sampler_host.cpp",
            "platform/sampler/exs_text.cpp"})
        self.assertEqual([mutate.nearness(name, program) for name in (
            "platform/sampler/exs_reader.cpp", "platform/sampler/exs_text.cpp", "exs/shape.cpp",
            "relink/session.cpp")], [2, 1, 1, 0])


PROJECT = {
    ".gitignore": "/build/\n",
    "CMakePresets.json": """\
        {
          "version": 3,
          "configurePresets": [
            { "name": "dev", "generator": "Ninja", "binaryDir": "${sourceDir}/build/dev" }
          ]
        }
        """,
    "CMakeLists.txt": """\
        cmake_minimum_required(VERSION 3.22)
        project(small LANGUAGES CXX)
        enable_testing()
        add_library(digit STATIC code/digit.cpp)
        add_executable(digit_test test.cpp)
        target_link_libraries(digit_test digit)
        add_test(NAME digit COMMAND digit_test)
        """,
    "code/digit.cpp": """\
        int digit(int value) {
            if (value < 0) {
                return -1;
            }
            while (value > 9) {
                value -= 10;
            }
            return value;
        }
        #if 0
        int never_compiled = 1;
        #endif
        """,
    "test.cpp": """\
        int digit(int value);
        int main() {
            return digit(-5) == -1 && digit(3) == 3 && digit(25) == 5 ? 0 : 1;
        }
        """,
}


class SmallProject(unittest.TestCase):
    def test_survivors_are_what_its_tests_do_not_notice(self):
        workbench.HANG_CPU_SECONDS = 0
        with tempfile.TemporaryDirectory() as folder:
            project = Path(folder)
            for name, text in PROJECT.items():
                (project / name).parent.mkdir(exist_ok=True)
                (project / name).write_text(textwrap.dedent(text))
            subprocess.run(["git", "init", "-q"], cwd=project, check=True)
            out = io.StringIO()
            counts = mutate.run(project, (("code",),), 1000, 1, out, io.StringIO())
            self.assertEqual((project / "code/digit.cpp").read_text(),
                             textwrap.dedent(PROJECT["code/digit.cpp"]))
        *survivors, closing = out.getvalue().splitlines()
        self.assertEqual(sorted(survivors), [
            "survived: code/digit.cpp:2: boundary: < -> <=",  # 0 is not tried
            "survived: code/digit.cpp:2: constant: 0 -> (0 + 1)",
            "survived: code/digit.cpp:2: constant: 0 -> (0 - 1)",
            "survived: code/digit.cpp:5: boundary: > -> >=",  # 9 and 10 are not tried either
            "survived: code/digit.cpp:5: constant: 9 -> (9 + 1)",
            "survived: code/digit.cpp:5: constant: 9 -> (9 - 1)",
        ])
        self.assertEqual(closing, f"{counts['noticed']} noticed, 6 survived, "
                         "2 compiled to the same programs, 0 did not compile")
        # These include changes that make the loop endless.
        self.assertEqual(counts["noticed"], 10)


if __name__ == "__main__":
    unittest.main()
