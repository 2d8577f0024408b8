"""A batch on several workers gives what it gives on one machine, line by line.

    cluster_test.py dask|parallel|commands TAMZO_VAST

Ends with status 77 where what it needs is not installed.
"""

import collections
import gzip
import importlib.util
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
EXAMPLES = ROOT / "examples" / "distributed"
UNRELIABLE = pathlib.Path(__file__).with_name("unreliable.py")
SAMPLE = (ROOT / "examples" / "sample-response.xml").read_text(encoding="utf-8")
MARK = "the-worker-stumbles-here"
COMMAND = None


def line(number):
    vast = SAMPLE.replace("sample-42", f"sample-{number}")
    if number % 7 == 3:
        vast = vast[:number * 5]
    return json.dumps({"id": {"n": number, "weird": '","line": 3,"error":"'}, "vast": vast}).encode()


def faulty_line():
    """With more findings of a kind than an answer tells one by one."""
    files = '<MediaFile type="video/mp4"></MediaFile>' * 50
    return json.dumps({"id": 45, "vast": SAMPLE.replace("</MediaFiles>", files + "</MediaFiles>")}).encode()


def lines_of(first, count):
    """Good lines, and among them what a batch passes over or refuses."""
    lines = [line(number) for number in range(first, first + count)]
    lines[5:5] = [b"", b"  ", b"no JSON", b'{"id": [1.10, "line"], "vast": 3}', b'{"id": 1, "vast": "\xff"}']
    lines[20] += b"\r"
    lines[40] = json.dumps({"id": MARK, "vast": SAMPLE}).encode()
    lines[45] = faulty_line()
    lines[50] = b"\xef\xbb\xbf" + lines[50]
    return lines


def responses(folder):
    """Files of lines: with a byte order mark, without an end, compressed, empty."""
    folder.mkdir()
    contents = {
        "a.jsonl": b"\xef\xbb\xbf" + b"\n".join(lines_of(0, 120)) + b"\n",
        "b.jsonl": b"\n".join(lines_of(200, 80)),
        "c.jsonl": b"",
        "d.jsonl": b"\n".join(line(number) for number in range(400, 460)) + b"\n",
    }
    for name, content in contents.items():
        (folder / name).write_bytes(content)
    (folder / "e.jsonl.gz").write_bytes(gzip.compress(contents["d.jsonl"]))
    return sorted(folder.iterdir())


def content_of(path):
    return gzip.decompress(path.read_bytes()) if path.suffix == ".gz" else path.read_bytes()


def on_one_machine(content, options=()):
    run = subprocess.run([COMMAND, "batch", *options], input=content, stdout=subprocess.PIPE,
                         stderr=subprocess.DEVNULL, check=False)
    return run.stdout.splitlines(), run.returncode


CODE_ROW = re.compile(r" *(\d+)  +(\d+|-)  .*")
FINDING_ROW = re.compile(r" *(\d+)  +(\d+)  ([a-z0-9-]+ \(\w+\))")


def tables_on_one_machine(contents):
    """What the tables of `batch --summary --explain` come to together: codes, findings."""
    codes, findings = collections.Counter(), {}
    for content in contents:
        for row in on_one_machine(content, ["--summary", "--explain"])[0]:
            if found := FINDING_ROW.fullmatch(row.decode()):
                before = findings.get(found[3], (0, 0))
                findings[found[3]] = (before[0] + int(found[1]), before[1] + int(found[2]))
            elif code := CODE_ROW.fullmatch(row.decode()):
                codes[code[2]] += int(code[1])
    return codes, findings


class ClusterTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.flag = self.folder / "flag"

    def unreliable(self, mode):
        return shlex.join([sys.executable, str(UNRELIABLE), mode, str(self.flag), MARK, COMMAND])

    def assertWorkerWasKilled(self):
        self.assertTrue(self.flag.exists())
        with self.assertRaises(ProcessLookupError):
            os.kill(int(self.flag.read_text()), 0)

    def assertSameLines(self, found, expected):
        self.assertEqual(len(found), len(expected))
        for number, (one, other) in enumerate(zip(found, expected), 1):
            self.assertEqual(one, other, f"line {number}")


class DaskTest(ClusterTest):
    def dask(self, *arguments):
        return subprocess.run(
            [EXAMPLES / "dask_batch.py", "--out", self.folder / "out", "--workers", "2", *arguments],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)

    def answers(self):
        parts = sorted((self.folder / "out").glob("part-*.jsonl"))
        return [answer for part in parts for answer in part.read_bytes().splitlines()]

    def test_answers_and_table_are_those_of_one_machine_though_a_worker_is_killed(self):
        files = responses(self.folder / "responses")
        expected = [answer for path in files
                    for answer in on_one_machine(content_of(path), ["--explain"])[0]]
        run = self.dask("--block", "40000", "--command", self.unreliable("once"), *files, "--",
                        "--explain")
        self.assertEqual(run.returncode, 2, run.stderr[-3000:])
        self.assertWorkerWasKilled()
        self.assertSameLines(self.answers(), expected)
        self.assertFalse(list((self.folder / "out").glob("*.unfinished")))

        codes, findings = tables_on_one_machine(map(content_of, files))
        self.assertGreater(max(often - made_in for made_in, often in findings.values()), 40)
        table = json.loads((self.folder / "out" / "table.json").read_text())
        self.assertEqual(table, {
            "errorCodes": {code: count for code, count in codes.items() if code != "-"},
            "findings": {finding.split()[0]: {"responses": made_in, "findings": often}
                         for finding, (made_in, often) in findings.items()},
            "failedBlocks": 0, "refused": codes["-"]})
        printed = run.stdout.decode().splitlines()
        for code, count in codes.items():
            self.assertTrue(any(row.startswith(f"{count:9}  {code:>5}") for row in printed), code)
        for finding, (made_in, often) in findings.items():
            self.assertIn(f"{made_in:9}  {often:8}  {finding}", printed)

    def test_the_exit_status_is_that_of_one_machine(self):
        path = self.folder / "lines.jsonl"
        path.write_bytes(faulty_line() + b"\n")
        for options, status in (([], 0), (["--fail-on", "media-without-url"], 1)):
            self.assertEqual(on_one_machine(path.read_bytes(), options)[1], status)
            run = self.dask("--command", COMMAND, path, "--", *options)
            self.assertEqual(run.returncode, status, run.stderr[-3000:])
            shutil.rmtree(self.folder / "out")

    def test_a_block_that_always_fails_costs_no_other(self):
        lines = [line(number) for number in range(12)]
        lines[6] = json.dumps({"id": MARK, "vast": SAMPLE}).encode()
        path = self.folder / "lines.jsonl"
        path.write_bytes(b"\n".join(lines) + b"\n")
        # About one line a block.
        run = self.dask("--block", str(len(lines[0])), "--command", self.unreliable("always"), path)
        self.assertEqual(run.returncode, 3, run.stderr[-3000:])
        self.assertIn(b"ended with 70", run.stderr)
        found = self.answers()
        expected, _ = on_one_machine(path.read_bytes())
        missing = [answer for answer in expected if answer not in found]
        self.assertEqual(found, [answer for answer in expected if answer not in missing])
        self.assertIn(MARK.encode(), b"".join(missing))
        self.assertLessEqual(len(missing), 2)


    def test_a_file_that_cannot_be_read_costs_no_other(self):
        good = self.folder / "good.jsonl"
        good.write_bytes(line(0) + b"\n")
        folder = self.folder / "folder.jsonl"
        folder.mkdir()
        torn = self.folder / "torn.jsonl.gz"
        torn.write_bytes(gzip.compress(line(1))[:-20])
        bad = [self.folder / "none.jsonl", folder, torn]
        run = self.dask("--command", COMMAND, *bad, good)
        self.assertEqual(run.returncode, 3, run.stderr[-3000:])
        for path in bad:
            self.assertIn(f"{path}, from byte 0: ".encode(), run.stderr)
        self.assertSameLines(self.answers(), on_one_machine(good.read_bytes())[0])
        self.assertEqual(json.loads((self.folder / "out" / "table.json").read_text())["failedBlocks"], 3)

    def test_names_and_ids_may_be_odd_and_a_file_be_given_twice(self):
        contents = {
            "a[1].jsonl": b'x\n{"id": ' + b"1" * 5000 + b', "vast": "<"}\n',
            "a1.jsonl": line(1) + b"\n",
            "a*.jsonl": line(2) + b"\n",
            "b::a1.jsonl": line(3) + b"\n",
        }
        files = []
        for name, content in contents.items():
            files.append(self.folder / name)
            files[-1].write_bytes(content)
        files.insert(0, files[0])
        run = self.dask("--command", COMMAND, *files)
        self.assertEqual(run.returncode, 2, run.stderr[-3000:])
        self.assertSameLines(self.answers(), [answer for path in files
                                              for answer in on_one_machine(path.read_bytes())[0]])

    def test_a_block_of_no_bytes_is_refused(self):
        for size in ("0", "-1", "x"):
            self.assertEqual(self.dask("--block", size, "a.jsonl").returncode, 2)
            self.assertFalse((self.folder / "out").exists())


class ParallelTest(ClusterTest):
    def parallel(self, content, command, *options):
        return subprocess.run(
            [EXAMPLES / "parallel_batch.sh", *options], input=content, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, check=False,
            env=os.environ | {"COMMAND": str(command), "BLOCK": "20k", "JOBS": "2"})

    def command(self, mode):
        # COMMAND is the name of a program.
        script = self.folder / "unreliable"
        script.write_text(f'#!/bin/sh\nexec {self.unreliable(mode)} "$@"\n')
        script.chmod(0o755)
        return script

    def test_answers_are_those_of_one_machine_though_a_worker_is_killed(self):
        content = b"\xef\xbb\xbf" + b"\n".join(lines_of(0, 120))
        run = self.parallel(content, self.command("once"))
        self.assertEqual(run.returncode, 2, run.stderr[-3000:])
        self.assertWorkerWasKilled()
        self.assertSameLines(run.stdout.splitlines(), on_one_machine(content)[0])

    def test_a_block_that_always_fails_costs_no_other(self):
        content = b"\n".join(lines_of(0, 80)) + b"\n"
        run = self.parallel(content, self.command("always"))
        self.assertEqual(run.returncode, 3)
        self.assertIn(b"status 70", run.stderr)
        ids = [json.loads(answer)["id"] for answer in run.stdout.splitlines()]
        self.assertNotIn(MARK, ids)
        self.assertEqual([ids[0]["n"], ids[-1]["n"]], [0, 79])

    def test_the_shell_may_be_given_the_script_by_its_bare_name(self):
        folder = self.folder / "a folder"
        folder.mkdir()
        script = shutil.copy(EXAMPLES / "parallel_batch.sh", folder)
        os.chmod(script, 0o644)
        run = subprocess.run(["sh", "parallel_batch.sh"], cwd=folder, input=line(0), check=False,
                             stdout=subprocess.PIPE, env=os.environ | {"COMMAND": COMMAND})
        self.assertEqual(run.returncode, 0)
        self.assertSameLines(run.stdout.splitlines(), on_one_machine(line(0))[0])

    def test_the_exit_status_is_that_of_one_machine(self):
        good = line(0)
        for content in (b"", good, good + b"\n" + line(3), line(3), good + b"\nx"):
            run = self.parallel(content, COMMAND)
            self.assertEqual(run.returncode, on_one_machine(content)[1], content[:50])
        self.assertEqual(self.parallel(good, COMMAND, "--no-such-option").returncode, 3)


class CommandsTest(ClusterTest):
    def test_the_commands_of_the_document_give_what_one_machine_gives(self):
        (self.folder / "responses").mkdir()
        for first in (1000, 2000):
            good = [line(number) for number in range(first, first + 20) if number % 7 != 3]
            (self.folder / "responses" / f"{first}.jsonl").write_bytes(b"\n".join(good) + b"\n")
        content = b"".join(path.read_bytes() for path in sorted((self.folder / "responses").iterdir()))
        (self.folder / "examples").symlink_to(ROOT / "examples")
        path = f"{pathlib.Path(COMMAND).parent}:{os.environ['PATH']}"
        run = subprocess.run([EXAMPLES / "commands.sh"], cwd=self.folder, check=False,
                             env=os.environ | {"PATH": path})
        self.assertEqual(run.returncode, 0)
        expected, _ = on_one_machine(content)
        blocked, _ = on_one_machine(content, ["--blocked-categories", "IAB7"])
        for name, lines in {"answers": expected, "cluster-answers": blocked,
                            "parallel-answers": expected, "plain-answers": expected}.items():
            found = (self.folder / f"{name}.jsonl").read_bytes().splitlines()
            self.assertSameLines(found, lines)


TESTS = {"dask": DaskTest, "parallel": ParallelTest, "commands": CommandsTest}


def main():
    global COMMAND
    kind, COMMAND = sys.argv[1], str(pathlib.Path(sys.argv[2]).resolve())
    if kind in ("dask", "commands") and importlib.util.find_spec("distributed") is None:
        print("skipped: python3-distributed is not installed")
        return 77
    if kind in ("parallel", "commands") and shutil.which("parallel") is None:
        print("skipped: parallel is not installed")
        return 77
    tests = unittest.defaultTestLoader.loadTestsFromTestCase(TESTS[kind])
    return not unittest.TextTestRunner(verbosity=2).run(tests).wasSuccessful()


if __name__ == "__main__":
    sys.exit(main())
