#!/usr/bin/env python3
"""Runs of lumo-import-library: the imported instruments, the calls of the tool, the output and the
exit status."""

import errno
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import unittest

from library_scene import EMULATOR, LIBRARY, TOOL, LibraryTest, words_of
from lumo_testing import HANG_SECONDS, PROJECT, contents, write_preset

sys.path.insert(0, str(PROJECT / "script"))
import macho  # noqa: E402

SANITIZED = bool(os.environ.get("LUMO_SANITIZE"))


class Finding(LibraryTest):
    def test_says_how_many_and_a_dry_run_stops_there(self):
        self.use_fake_tool()
        self.make("a/1.exs", "a/2.AUPRESET", "b/3.Exs", "b/no.txt")
        done = self.run_library("--dry-run", "lib")
        self.expect(done, 0)
        self.assertEqual(done.stdout, b"3 instruments in 2 folders\n")
        self.assertEqual(done.stderr, b"")
        self.assertEqual(self.calls(), [])
        done = self.run_library("lib")
        self.assertTrue(done.stdout.startswith(b"3 instruments in 2 folders\n\n3 instruments: 3"))

    def test_says_how_many_before_it_starts(self):
        self.use_fake_tool(**{"1": "wait"})
        self.make("1.exs")
        with subprocess.Popen(self.words("lib"), cwd=self.folder,
                              stdout=subprocess.PIPE) as process:
            self.assertEqual(process.stdout.readline(), b"1 instrument in 1 folder\n")
            process.terminate()

    def test_names_no_more_than_ten_unreadable_paths(self):
        self.library.mkdir()
        names = [f"lib/{i}.exs" for i in range(10, 22)]
        complaints = [f"lumo-import-library: cannot be read, left out: {name}" for name in names]
        for count, expected in ((10, complaints[:10]),
                                (12, [*complaints[:10], "lumo-import-library: and 2 more"])):
            for name in names[:count]:
                if not os.path.islink(self.folder / name):
                    os.symlink("nowhere", self.folder / name)
            done = self.run_library("--dry-run", "lib")
            self.expect(done, 0)
            self.assertEqual(done.stderr.decode().splitlines(), expected)

    def test_says_when_there_is_none(self):
        self.library.mkdir()
        done = self.run_library("lib")
        self.expect(done, 0)
        self.assertEqual(done.stdout, b"no instrument found\n")

    def test_reports_unreadable_arguments_before_anything_is_imported(self):
        self.use_fake_tool()
        self.make("a.exs")
        done = self.run_library("lib", "gone", "lib/b.exs", "--search", "nowhere")
        self.expect(done, 1)
        self.assertEqual(done.stdout, b"")
        self.assertEqual(done.stderr, b"""\
lumo-import-library: gone: No such file or directory
lumo-import-library: lib/b.exs: No such file or directory
lumo-import-library: nowhere: No such file or directory
""")
        self.assertEqual(self.calls(), [])
        for option in ("--continue", "--from"):
            words = [*EMULATOR, self.program, "--from", "gone"] if option == "--from" else None
            done = self.run_library("--continue", "gone", "lib", words=words)
            self.expect(done, 1)
            self.assertIn(b"gone: No such file or directory", done.stderr)
        done = self.run_library("--lines", "none/lines", "lib")
        self.expect(done, 1)
        self.assertEqual(self.calls(), [])

    @unittest.skipUnless(os.geteuid() == 0, "only root can become another account")
    def test_reports_folders_that_cannot_be_opened(self):
        self.make("a.exs", "closed/b.exs")
        (self.library / "closed").chmod(0)
        for path in (self.folder, self.library):
            path.chmod(0o755)
        done = self.run_library("--dry-run", "lib", user=65534)
        self.expect(done, 0)
        self.assertEqual(done.stdout, b"1 instrument in 1 folder\n")
        self.assertEqual(done.stderr,
                         b"lumo-import-library: cannot be read, left out: lib/closed\n")
        done = self.run_library("--dry-run", "lib/closed", user=65534)
        self.expect(done, 1)
        self.assertEqual(done.stderr, b"lumo-import-library: lib/closed: Permission denied\n")
        (self.library / "a.exs").chmod(0)
        done = self.run_library("--dry-run", "lib/a.exs", user=65534)
        self.expect(done, 1)
        self.assertEqual(done.stderr, b"lumo-import-library: lib/a.exs: Permission denied\n")


class Calls(LibraryTest):
    def instruments(self, call):
        """The instruments among the words of a call, and the words before them."""
        i = 1
        while i < len(call) and call[i] in ("--package", "--states", "--search"):
            i += 2
        return call[i:], call[1:i]

    def test_have_the_instruments_in_order_and_all_folders(self):
        self.use_fake_tool()
        self.make("b/2.exs", "a/1.exs", "a.exs")
        (self.folder / "kit").mkdir()
        (self.folder / "kit/x.exs").touch()
        (self.folder / "more").mkdir()
        self.expect(self.run_library("--search", "more", "lib/", "kit/x.exs"), 0)
        [call] = self.calls()
        self.assertEqual(self.instruments(call), (
            ["kit/x.exs", "lib/a.exs", "lib/a/1.exs", "lib/b/2.exs"],
            ["--package", "Show.lumo", "--states", "states", "--search", "kit", "--search", "lib",
             "--search", "more"]))

    def test_hand_names_that_begin_with_a_dash_over_as_paths(self):
        self.use_fake_tool()
        (self.folder / "--lib").mkdir()
        (self.folder / "--lib/-a.exs").touch()
        (self.folder / "-b.exs").touch()
        self.expect(self.run_library("--", "--lib", "-b.exs"), 0)
        [call] = self.calls()
        self.assertEqual(self.instruments(call)[0], ["./--lib/-a.exs", "./-b.exs"])

    def test_are_cut_to_what_the_system_takes(self):
        self.use_fake_tool()
        names = [f"{i:05} {'long name ' * 4}.exs" for i in range(20000)]
        self.make(*names)
        limit = 512 << 10  # bytes of stack; the system allows a quarter of it for arguments
        words = ["sh", "-c", f"ulimit -s {limit >> 10}; exec \"$@\"", "sh", *self.words("lib")]
        done = self.run_library(words=words)
        self.expect(done, 0)
        calls = self.calls()
        self.assertGreater(len(calls), 3)
        self.assertEqual(sum((self.instruments(call)[0] for call in calls), []),
                         [f"lib/{name}" for name in names])
        self.assertEqual(len({tuple(self.instruments(call)[1]) for call in calls}), 1)
        for call in calls[:-1]:  # none is shorter than necessary
            self.assertGreater(sum(len(word) + 9 for word in call), limit // 4 - 32768)
        self.assertIn(b"20,000 instruments: 20,000 imported, 0 failed", done.stdout)

    if not EMULATOR:
        def test_are_cut_further_where_the_system_takes_less_than_it_says(self):
            here = self.use_fake_tool()
            self.make("a.exs", "b.exs", "c.exs")
            done = self.run_library(words=[
                "env", "ASAN_OPTIONS=detect_leaks=0", "strace", "-f", "-o", os.devnull,
                "-P", here / TOOL.name, "-e", "inject=execve:error=E2BIG", *self.words("lib")])
            self.expect(done, 3)
            self.assertEqual(done.stderr.count(b"cannot be started: Argument list too long"), 1)

        def test_have_no_input_and_no_other_descriptors(self):
            here = self.use_fake_tool()
            self.make("a.exs")
            self.expect(self.run_library("--lines", "lines", "--page", "page.html", "lib"), 0)
            self.assertEqual(json.loads((here / "descriptors.json").read_text()), [True, []])

    def test_are_as_few_as_the_system_takes(self):
        self.use_fake_tool()
        self.make(*[f"{i:05}.exs" for i in range(20000)])
        self.expect(self.run_library("lib"), 0)
        self.assertEqual(len(self.calls()), 1)

    def test_of_parts_have_the_same_folders_as_the_call_for_all(self):
        self.use_fake_tool()
        self.make(*[f"{i}/{i}.exs" for i in range(10)])
        for part in (1, 2, 3):
            self.expect(self.run_library("--shard", f"{part}/3", "lib"), 0)
        self.expect(self.run_library("lib"), 0)
        *parts, whole = [self.instruments(call) for call in self.calls()]
        self.assertEqual(sum((part[0] for part in parts), []), whole[0])
        self.assertEqual({tuple(part[1]) for part in parts}, {tuple(whole[1])})

    def test_of_more_parts_than_instruments_have_one_or_none(self):
        self.use_fake_tool()
        self.make("a.exs", "b.exs", "c.exs")
        last = 2 ** 32 - 1
        for part in (1, last // 2, last):
            self.expect(self.run_library("--shard", f"{part}/{last}", "lib"), 0)
        self.assertEqual([self.instruments(call)[0] for call in self.calls()], [["lib/c.exs"]])

    def test_leave_out_what_was_imported_but_count_it_among_the_parts(self):
        self.use_fake_tool(**{"2": "fail no"})
        self.make(*[f"{i}.exs" for i in range(10)])
        self.expect(self.run_library("--lines", "lines", "--shard", "1/2", "lib"), 2)
        self.plan()
        done = self.run_library("--continue", "lines", "--shard", "1/2", "lib")
        self.expect(done, 0)
        self.assertIn(b"part 1 of 2: 5 instruments\n4 of them left out: imported before\n",
                      done.stdout)
        self.expect(self.run_library("--continue", "lines", "--shard", "2/2", "lib"), 0)
        self.assertEqual([self.instruments(call)[0] for call in self.calls()[1:]],
                         [["lib/2.exs"], [f"lib/{i}.exs" for i in range(5, 10)]])


class Lines(LibraryTest):
    def test_are_the_tools_own_byte_for_byte(self):
        hostile = os.fsdecode(b"caf\xe9 \x1b[31m\"\\.exs")
        self.make(hostile, "b.exs", "c.aupreset")
        self.make_kit("Kit")
        (self.folder / "lines").write_bytes(b"kept\n")
        self.expect(self.run_library("--lines", "lines", "lib"), 2)
        ours = (self.folder / "lines").read_bytes()
        shutil.rmtree(self.folder / "Show.lumo")
        shutil.rmtree(self.folder / "states")
        sources = sorted([os.fsencode(f"lib/{hostile}"), b"lib/b.exs", b"lib/c.aupreset",
                          b"lib/Kit/Kit.aupreset"])
        tool = subprocess.run(words_of(TOOL, *sources), cwd=self.folder,
                              capture_output=True, check=True).stdout

        def without_time(lines):
            return [line.split(b'"loadMs"')[0] for line in lines.split(b"\n")]

        self.assertEqual(without_time(ours), [b"kept", *without_time(tool)])

    def test_leave_out_sources_byte_for_byte(self):
        self.use_fake_tool()
        names = [os.fsdecode(name) for name in (
            b"caf\xe9.exs", b"caf\xc3\xa9.exs", b"e\xcc\x81.exs", b"\xc3\xa9.exs",
            b"\xf4\x8f\x9f\xa9.exs")]
        self.make(*names)
        self.expect(self.run_library("--lines", "lines", "lib"), 0)
        lines = (self.folder / "lines").read_bytes().splitlines(keepends=True)
        self.assertEqual(len(lines), len(names))
        for i, name in enumerate(sorted(map(os.fsencode, names))):
            (self.folder / "others").write_bytes(b"".join(lines[:i] + lines[i + 1:]))
            self.expect(self.run_library("--continue", "others", "lib"), 0)
            self.assertEqual(self.calls()[-1][-1].encode("latin-1"), b"lib/" + name)

    def test_that_cannot_be_written_end_the_run(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("there is no /dev/full")
        self.use_fake_tool(**{"2": "wait"})
        self.make("1.exs", "2.exs", "3.exs")
        done = self.run_library("--lines", "/dev/full", "lib")
        self.expect(done, 3)
        self.assertIn(b"/dev/full: No space left on device; the run ends here", done.stderr)
        self.assertIn(b"1 instrument: 1 imported, 0 failed", done.stdout)


class Endings(LibraryTest):
    def summary(self, done):
        return done.stdout.decode().split("\n\n")[1]

    def test_of_imports_that_failed_give_2(self):
        self.use_fake_tool(b="fail its state couldn't be written")
        self.make("a.exs", "b.exs", "c.exs")
        done = self.run_library("lib")
        self.expect(done, 2)
        self.assertIn("3 instruments: 2 imported, 1 failed\n2 samples, 3.0 kB copied, ",
                      self.summary(done))

    def test_of_the_tool_are_reported_and_the_run_continues(self):
        for act, reason in (("signal 6", f"signal 6 ({signal.strsignal(6)})"),
                            ("status 0", "status 0"), ("status 1", "status 1"),
                            ("torn", "status 0")):
            with self.subTest(act):
                self.use_fake_tool(b=act)
                self.make("a.exs", "b.exs", "c.exs")
                done = self.run_library("--lines", "lines", "lib")
                self.expect(done, 2)
                self.assertEqual(done.stderr.decode(), "lumo-import-library: lumo-exs-import ended "
                                                       f"at lib/b.exs: {reason}\n")
                self.assertIn("3 instruments: 2 imported, 1 failed", self.summary(done))
                self.assertIn(b"        1 the tool ended at it\n", done.stdout)
                reports = self.reports("lines")
                self.assertEqual([report["source"] for report in reports],
                                 ["lib/a.exs", "lib/b.exs", "lib/c.exs"])
                self.assertEqual(reports[1]["error"], f"the tool ended at it: {reason}")
                os.remove(self.folder / "lines")

    def test_of_the_real_tool_are_reported_too(self):
        long = "x" * 250  # too long for a name with ".aupreset" at its end
        self.make_kit("a")
        shutil.copy(self.library / "a/a.aupreset", self.library / f"{long}.exs")
        kit = self.make_kit("b")
        write_preset(self.library / f"{'y' * 246}.aupreset", [kit.parent / "0.wav"])
        (self.folder / "states").mkdir()
        done = self.run_library("--lines", "lines", "lib")
        self.expect(done, 2)
        ok = [report["source"] for report in self.reports("lines") if report["ok"]]
        self.assertLessEqual({"lib/a/a.aupreset", "lib/b/b.aupreset"}, set(ok))
        self.assertEqual(len(self.reports("lines")), 4)

    def test_three_times_in_a_row_without_a_line_give_3(self):
        self.use_fake_tool(b="signal 9", c="signal 9", d="signal 9")
        self.make("a.exs", "b.exs", "c.exs", "d.exs", "e.exs")
        done = self.run_library("lib")
        self.expect(done, 3)
        self.assertEqual(done.stderr.count(b"ended at"), 3)
        self.assertIn(b"the run could not be finished", done.stderr)
        self.assertIn("4 instruments: 1 imported, 3 failed", self.summary(done))
        self.assertIn("1 not imported: the run ended before", self.summary(done))

    def test_with_lines_between_them_do_not(self):
        self.use_fake_tool(a="signal 9", b="signal 9", d="signal 9", e="signal 9", g="status 1")
        self.make(*[f"{name}.exs" for name in "abcdefg"])
        done = self.run_library("lib")
        self.expect(done, 2)
        self.assertIn("7 instruments: 2 imported, 5 failed", self.summary(done))

    def test_without_a_tool_give_3(self):
        here = self.use_fake_tool()
        (here / TOOL.name).unlink()
        self.make("a.exs")
        done = self.run_library("lib")
        self.expect(done, 3)
        self.assertIn(b"lumo-exs-import: cannot be started: No such file or directory", done.stderr)

    def test_with_more_roots_than_a_command_line_takes_give_3(self):
        self.use_fake_tool()
        names = [f"{i}/a.exs" for i in range(9000)]
        self.make(*names)
        # Of 256 KiB, the instruments' paths take 200, and a --search of each one's folder 300.
        done = self.run_library(words=["sh", "-c", "ulimit -s 1024; exec \"$@\"", "sh",
                                       *self.words(*[f"lib/{name}" for name in names])])
        self.expect(done, 3)
        self.assertIn(b"lumo-exs-import: cannot be started: Argument list too long", done.stderr)

    def test_of_a_line_that_is_none_are_a_failure(self):
        self.use_fake_tool(b="print nonsense")
        self.make("a.exs", "b.exs", "c.exs")
        done = self.run_library("lib")
        self.expect(done, 2)
        self.assertIn(b"        1 the tool gave no report line for it\n", done.stdout)

    def test_of_more_lines_than_instruments_ignore_the_rest(self):
        more = json.dumps({"name": "d", "source": "lib/d.exs", "ok": False, "error": "no",
                           "relinked": [], "unresolved": [], "appleLibrary": [], "samples": 1,
                           "sampleBytes": 1, "copiedBytes": 1, "stateFile": "", "loadMs": 0.1,
                           "shape": {"zones": 0, "maxStack": 1, "stackedPercent": 0.0,
                                     "lowestKey": 127, "highestKey": 0, "layers": []}})
        self.use_fake_tool(c=f"print nonsense\n{more}")
        self.make("a.exs", "b.exs", "c.exs")
        done = self.run_library("--lines", "lines", "lib")
        self.expect(done, 2)
        self.assertIn("3 instruments: 2 imported, 1 failed\n2 samples", self.summary(done))
        self.assertEqual((self.folder / "lines").read_bytes().count(b"\n"), 3)

    def test_of_the_tools_errors_are_not_those_of_its_lines(self):
        self.use_fake_tool(a="close stderr")
        self.make("a.exs", "b.exs")
        done = self.run_library("lib")
        self.expect(done, 0)
        self.assertIn("2 instruments: 2 imported, 0 failed", self.summary(done))

    def test_pass_on_the_tools_last_words(self):
        self.use_fake_tool(b="last words no \x1b[2Jend")
        self.make("a.exs", "b.exs")
        done = self.run_library("lib")
        self.expect(done, 2)
        self.assertEqual(done.stderr, b"lumo-exs-import: no \\x1b[2Jend\n"
                                      b"lumo-import-library: lumo-exs-import ended at lib/b.exs: "
                                      b"status 1\n")

    if not EMULATOR:  # the system of a Mac always says where a program lies
        def test_where_the_system_does_not_say_where_the_program_lies_give_3(self):
            self.use_fake_tool()
            self.make("a.exs")
            shutil.copy(self.folder / "programs" / TOOL.name, self.folder)  # not to be started
            done = self.run_library(words=[
                "env", "ASAN_OPTIONS=detect_leaks=0", "strace", "-f", "-o", os.devnull,
                "-e", "inject=readlink,readlinkat:error=ENOENT", *self.words("lib")])
            self.expect(done, 3)
            self.assertIn("lumo-import-library: the folder of this program, which has "
                          "lumo-exs-import, is not known (on Linux /proc shows it)",
                          done.stderr.decode().splitlines())
            self.assertFalse((self.folder / "calls.jsonl").exists())

        def inject(self, calls, *arguments):
            """Runs the program with system calls that fail or come with a signal."""
            return self.run_library(words=[
                "env", "ASAN_OPTIONS=detect_leaks=0", "strace", "-o", os.devnull,
                *(word for call in calls for word in ("-e", f"inject={call}")),
                *self.words(*arguments)])

        def test_by_ctrl_c_during_the_walk_come_before_the_tool_is_started(self):
            self.use_fake_tool()
            self.make("a.exs", "b/c.exs")
            done = self.inject(["getdents64:signal=SIGINT:when=1"], "lib")
            self.assertEqual((done.returncode, done.stdout, done.stderr),
                             (128 + signal.SIGINT, b"", b""))
            self.assertEqual(self.calls(), [])

        def test_without_pipes_or_processes_give_3(self):
            self.use_fake_tool()
            self.make("a.exs")
            failing = [("clone,clone3,fork,vfork:error=EAGAIN", errno.EAGAIN)]
            if not SANITIZED:  # the sanitizer itself uses pipes
                failing.append(("pipe,pipe2:error=EMFILE", errno.EMFILE))
            for call, reason in failing:
                with self.subTest(call):
                    done = self.inject([call], "lib")
                    self.expect(done, 3)
                    self.assertIn(f"lumo-exs-import: cannot be started: {os.strerror(reason)}\n",
                                  done.stderr.decode())
            self.assertEqual(self.calls(), [])

    def interrupt(self, send, number, status):
        here = self.use_fake_tool(c="wait")
        self.make("a.exs", "b.exs", "c.exs", "d.exs")
        process = subprocess.Popen(self.words("--lines", "lines", "--page", "page.html", "lib"),
                                   cwd=self.folder,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, start_new_session=True)
        self.wait_until((here / "waiting").exists, "the tool is at c")
        self.wait_until(lambda: (self.folder / "lines").read_bytes().count(b"\n") == 2, "two lines")
        send(process.pid, number)
        out, err = process.communicate(timeout=HANG_SECONDS)
        self.assertEqual((process.returncode, err), (status, b""))
        self.assertIn(b"2 instruments: 2 imported, 0 failed\n", out)
        self.assertIn(b"2 not imported: the run ended before\n", out)
        page = (self.folder / "page.html").read_text()
        self.assertIn('"left":2,', page)
        self.assertEqual([name in page for name in ('"a.exs"', '"b.exs"', '"c.exs"')],
                         [True, True, False])
        self.assertIn(b"run again with --continue lines", out)
        with self.assertRaises(ProcessLookupError):
            os.kill(int((here / "pid").read_text()), 0)
        self.assertEqual(len(self.reports("lines")), 2)

    def test_by_ctrl_c_end_the_tool_and_sum_up(self):
        self.interrupt(os.killpg, signal.SIGINT, 130)

    def test_by_a_signal_to_the_program_alone_end_the_tool_too(self):
        self.interrupt(os.kill, signal.SIGINT, 130)

    def test_by_ctrl_c_are_no_failure_of_the_tool_that_it_ends_first(self):
        self.use_fake_tool(b="silent, then Ctrl-C")
        self.make("a.exs", "b.exs", "c.exs")
        done = self.run_library("lib")
        self.assertEqual((done.returncode, done.stderr), (130, b""))
        self.assertIn("1 instrument: 1 imported, 0 failed", self.summary(done))
        self.assertIn("2 not imported: the run ended before", self.summary(done))
        self.assertEqual(len(self.calls()), 1)

    def test_by_a_second_ctrl_c_come_at_once(self):
        here = self.use_fake_tool(a="wait on")
        self.make("a.exs")
        process = subprocess.Popen(self.words("lib"), cwd=self.folder, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.wait_until((here / "waiting").exists, "the tool is at a")
        self.addCleanup(os.kill, int((here / "pid").read_text()), signal.SIGKILL)
        process.send_signal(signal.SIGINT)
        self.wait_until((here / "asked").exists, "the tool is asked to end")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(HANG_SECONDS), -signal.SIGINT)

    def test_by_the_signals_of_batch_systems_sum_up(self):
        self.interrupt(os.kill, signal.SIGTERM, 128 + signal.SIGTERM)

    def test_by_a_closed_terminal_sum_up(self):
        self.interrupt(os.kill, signal.SIGHUP, 128 + signal.SIGHUP)

    def test_by_an_ignored_signal_do_not_come(self):
        here = self.use_fake_tool()
        stay = here / "stay"
        stay.touch()
        self.make("a.exs")
        words = ["sh", "-c", "trap '' HUP; exec \"$@\"", "sh", *self.words("--lines", "l", "lib")]
        with subprocess.Popen(words, cwd=self.folder, stdout=subprocess.DEVNULL) as process:
            lines = self.folder / "l"
            self.wait_until(lambda: lines.exists() and lines.read_bytes(), "a line")
            process.send_signal(signal.SIGHUP)
            stay.unlink()
            self.assertEqual(process.wait(HANG_SECONDS), 0)

    def test_of_a_wrong_command_line_give_1(self):
        for words in ([], ["lib"], ["--package", "p", "--states", "s"], ["--nonsense"],
                      ["--package", "p", "--states", "s", "--shard", "3/2", "lib"],
                      ["--from"], ["--from", "x", "--package", "p"]):
            with self.subTest(words):
                done = self.run_library(words=[*EMULATOR, str(LIBRARY), *words])
                self.expect(done, 1)
                self.assertEqual(done.stdout, b"")
                self.assertTrue(done.stderr.startswith(b"lumo-import-library: "), done.stderr)

    def test_of_help_and_version_give_0(self):
        for option in ("--help", "--version"):
            done = self.run_library(words=[*EMULATOR, str(LIBRARY), option])
            self.expect(done, 0)
            self.assertIn(b"lumo-import-library", done.stdout)


class GoingOn(LibraryTest):
    KITS = 20

    def test_after_a_kill_at_20_places_imports_the_rest_once(self):
        for i in range(self.KITS):
            self.make_kit(f"kit{i:02}")
        samples = sorted(data for path, data in contents(self.library).items()
                         if path.suffix == ".wav")
        for place in range(self.KITS):
            with self.subTest(place):
                self.kill_and_go_on(place, samples)

    def kill_and_go_on(self, place, samples):
        """Kills the program when the instrument at `place` has been imported but its line has not
        been printed. At every second place the previous line is then truncated, as by a full
        disk."""
        at_hand = f"kit{place:02}"
        self.use_fake_tool(**{"*": "real", at_hand: "real, then kill",
                              "tool": [*EMULATOR, str(TOOL)]})
        self.expect(self.run_library("--lines", "lines", "--continue", "lines", "lib"),
                    -signal.SIGKILL)
        lines = self.folder / "lines"
        self.assertEqual(len(self.reports("lines")), place)
        torn = place > 0 and place % 2 == 1
        if torn:
            lines.write_bytes(lines.read_bytes()[:-100])
        self.program = LIBRARY
        done = self.run_library("--lines", "lines", "--continue", "lines", "lib")
        self.expect(done, 0)
        written = [line for line in lines.read_bytes().splitlines() if line.endswith(b"}}")]
        self.assertEqual([json.loads(line)["name"] for line in written],
                         [f"kit{i:02}" for i in range(self.KITS)])
        twice = {at_hand} | ({f"kit{place - 1:02}"} if torn else set())
        self.assertEqual({path.name for path in (self.folder / "states").iterdir()},
                         {f"kit{i:02}.aupreset" for i in range(self.KITS)} |
                         {f"{name}-2.aupreset" for name in twice})
        self.assertEqual(sorted(contents(self.folder / "Show.lumo/samples").values()), samples)
        for path in ("Show.lumo", "states"):
            shutil.rmtree(self.folder / path)
        lines.unlink()

    def test_with_nothing_left_says_so(self):
        self.make_kit("Kit")
        self.expect(self.run_library("--lines", "lines", "lib"), 0)
        done = self.run_library("--continue", "lines", "lib")
        self.expect(done, 0)
        self.assertEqual(done.stdout, b"1 instrument in 1 folder\n1 of them left out: imported "
                                      b"before\nnothing is left to do\n")


class SummingUp(LibraryTest):
    def from_files(self, *files):
        return self.run_library(words=[*EMULATOR, str(LIBRARY), "--from", *files])

    def test_takes_the_lines_of_several_runs(self):
        self.use_fake_tool(**{"2": "fail a sample wasn't found: x.wav"})
        self.make(*[f"{i}.exs" for i in range(4)])
        for part in (1, 2):
            self.run_library("--shard", f"{part}/2", "--lines", f"lines{part}", "lib")
        done = self.from_files("lines1", "lines2")
        self.expect(done, 2)
        self.assertEqual(done.stderr, b"")
        self.assertEqual(done.stdout.decode(), """\
4 instruments: 3 imported, 1 failed
3 samples, 4.0 kB copied

Failed, by cause:
        1 a sample wasn't found
          To do: add the folder that has them with --search

What to do next:
          do what each cause says, and run again, naming only the instruments that are left
          (with --lines FILE, a later run can skip what is imported)
""")
        done = self.from_files("lines1")
        self.expect(done, 0)

    def test_counts_what_came_last_of_an_instrument(self):
        self.use_fake_tool(a="fail no")
        self.make("a.exs")
        self.expect(self.run_library("--lines", "lines", "lib"), 2)
        self.expect(self.from_files("lines"), 2)
        self.plan()
        self.expect(self.run_library("--lines", "lines", "--continue", "lines", "lib"), 0)
        done = self.from_files("lines")
        self.expect(done, 0)
        self.assertIn(b"1 instrument: 1 imported, 0 failed\n", done.stdout)

    def test_says_what_is_no_line(self):
        (self.folder / "lines").write_text("notes\n{}\n{\"torn")
        done = self.from_files("lines")
        self.expect(done, 0)
        self.assertEqual(done.stdout, b"no instrument found\n")
        self.assertEqual(done.stderr,
                         b"lumo-import-library: lines: 2 lines passed over: no report lines\n")


class RealImports(LibraryTest):
    def test_make_the_show_that_the_tool_makes(self):
        self.make_kit("a")
        self.make_kit("b", moved=True)
        self.make_kit("c", moved=True)
        self.expect(self.run_library("lib"), 0)
        ours = contents(self.folder / "Show.lumo"), contents(self.folder / "states")
        shutil.rmtree(self.folder / "Show.lumo")
        shutil.rmtree(self.folder / "states")
        instruments = [f"lib/{name}/{name}.aupreset" for name in "abc"]
        subprocess.run(words_of(TOOL, "--search", "lib", *instruments), cwd=self.folder,
                       stdout=subprocess.DEVNULL, check=True)
        self.assertEqual(ours, (contents(self.folder / "Show.lumo"),
                                contents(self.folder / "states")))

    def test_never_give_the_terminal_a_hostile_name(self):
        for name in (b"</script>.exs", b"\"'<b>.exs", b"\x1b[31m\x07.exs", b"\xe2\x80\xae.exs",
                     b"\xff\xfe.exs", b"new\nline.exs"):
            self.make(os.fsdecode(name))
        write_preset(self.library / "moved.aupreset", ["/Volumes/\x7f/a.wav"])
        os.mkdir(os.path.join(os.fsencode(self.library), b"\x1b]0;title\x07"))
        done = self.run_library("--lines", "lines", "lib")
        self.expect(done, 2)
        self.assertEqual(len((self.folder / "lines").read_bytes().splitlines()), 7)
        done_again = self.run_library("lib/gone\x1b[2J")
        for text in (done.stdout, done.stderr, done_again.stderr):
            shown = text.decode("utf-8")
            self.assertFalse([c for c in shown if (c < " " and c != "\n") or c in "\x7f\u202e"])

    def test_are_not_this_programs_work(self):
        program = LIBRARY.read_bytes()
        if program.startswith(b"\x7fELF"):
            needed = subprocess.run(["readelf", "-d", LIBRARY], capture_output=True, text=True,
                                    check=True).stdout
        else:
            needed = "".join(f"NEEDED {library.name}\n" for image in macho.images(program)
                             for library in image.libraries)
        self.assertIn("NEEDED", needed)
        self.assertNotIn("lumo-relink", needed)
        self.assertNotIn("sndfile", needed)

    # A sanitizer's runtime is part of the program and has calls of its own.
    if not SANITIZED and not EMULATOR:
        @unittest.skipUnless(shutil.which("readelf"), "readelf is not installed")
        def test_are_started_with_fork_and_execv(self):
            symbols = subprocess.run(["readelf", "--wide", "--dyn-syms", LIBRARY], text=True,
                                     capture_output=True, check=True).stdout
            called = set(re.findall(r" UND (\w+)", symbols))
            self.assertLessEqual({"fork", "execv"}, called)
            self.assertFalse([name for name in called
                              if re.match("posix_spawn|vfork|system$|popen|exec(?!v$)", name)])


if __name__ == "__main__":
    unittest.main()
