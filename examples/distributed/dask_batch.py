#!/usr/bin/python3
"""Parses JSON lines of many files on a Dask cluster, by tamzo-vast batch on each worker.

    dask_batch.py --out FOLDER [--scheduler ADDRESS] [options] FILE... [-- OPTION OF BATCH...]

Each FILE holds lines {"id": ..., "vast": "..."}; it is a path of a file that there is, or a URL that
fsspec reads, plain or compressed. It is cut into blocks at ends of lines, and each block is a task.
FOLDER, which all workers must see, gets part-00000.jsonl and so on: in the order of their names they
hold one answer a line, in the order of the input. table.json has how many answers there were of each
errorCode and, when the answers explain, in how many each finding was made, and how often. The same is
printed as tables, as batch prints them.

Exit status, as that of batch: 0 when no ad failed, 1 when one did, 2 when a line could not be read;
and 3 when a block failed on every try, such as the one of a file that cannot be read. The answers of
all other blocks are there then.
"""

import argparse
import collections
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import uuid

import fsspec
import fsspec.core
import fsspec.implementations.local
import fsspec.utils
from distributed import Client, LocalCluster, as_completed, wait

Block = collections.namedtuple("Block", "path offset length")
# Counted as batch does: by errorCode; by finding, the responses that it was made in and how often; what
# could not be read; and the highest exit status.
Tally = collections.namedtuple("Tally", "codes responses findings refused status")

# The last in a refused line's answer: an id, which comes first, may hold anything.
LINE_NUMBER = re.compile(rb'("line":\s*)(\d+)(\s*,\s*"error":\s*"(?:[^"\\]|\\.)*"\s*\}\s*)$')


def whole(number):
    """An integer as it stands: Python refuses those of many digits."""
    return int(number) if len(number) < 20 else number


def opened(path):
    """The file system and the name there. In the name of a file that there is, nothing is special."""
    if os.path.exists(path):
        return fsspec.implementations.local.LocalFileSystem(), os.path.abspath(path)
    return fsspec.core.url_to_fs(path)


def blocks_of(path, size):
    """The blocks of a file; one that is compressed can only be read from its beginning. So it is with
    one that cannot be read: the block fails."""
    if fsspec.utils.infer_compression(path) is not None:
        return [Block(path, 0, None)]
    try:
        files, name = opened(path)
        if files.isdir(name):
            return [Block(path, 0, None)]
        return [Block(path, offset, size) for offset in range(0, files.size(name), size)]
    except (OSError, ValueError):
        return [Block(path, 0, None)]


def read(block):
    """The lines that begin in a block."""
    files, name = opened(block.path)
    compression = fsspec.utils.infer_compression(block.path)
    with fsspec.core.OpenFile(files, name, "rb", compression) as file:
        return fsspec.utils.read_block(file, block.offset, block.length, b"\n")


def count_lines(block):
    return read(block).count(b"\n")


def tally(answer, into):
    """Counts one answer; true when it is a record."""
    content = json.loads(answer, parse_int=whole)
    if "record" not in content:
        return False
    into.codes[content["record"]["errorCode"]] += 1
    found = collections.Counter()
    for finding in content.get("explanation", {}).get("findings", []):
        # Beyond a bound, findings of a kind are counted in the last of them.
        found[finding["id"], finding["severity"]] += 1 + finding["details"].get("more", 0)
    into.findings.update(found)
    into.responses.update(found.keys())
    return True


def empty_tally(status=0):
    return Tally(collections.Counter(), collections.Counter(), collections.Counter(), 0, status)


def sum_of(one, other):
    return Tally(one.codes + other.codes, one.responses + other.responses,
                 one.findings + other.findings, one.refused + other.refused,
                 max(one.status, other.status))


def shifted(answer, lines_before):
    """A refused line's answer with the number that the line has in its file."""
    return LINE_NUMBER.sub(
        lambda match: match[1] + str(int(match[2]) + lines_before).encode() + match[3], answer)


def write_answers(answers, lines_before, target, status):
    """Writes the answers as they come and counts them."""
    result = empty_tally(status)
    for answer in answers:
        if not tally(answer, result):
            result = result._replace(refused=result.refused + 1)
            answer = shifted(answer, lines_before)
        target.write(answer)
    return result


def parse_block(block, lines_before, part, command):
    """Pipes a block through the command. May be run again, or twice at once, as Dask sees fit: the part
    is put in its place whole."""
    lines = read(block)
    if block.offset:
        # A byte order mark is dropped at the beginning of a file only.
        lines, lines_before = b"\n" + lines, lines_before - 1
    unfinished = part.with_name(f"{part.name}.{uuid.uuid4().hex}.unfinished")
    with tempfile.TemporaryFile() as given, tempfile.TemporaryFile() as answers:
        given.write(lines)
        given.seek(0)
        run = subprocess.run(command, stdin=given, stdout=answers, stderr=subprocess.PIPE, check=False)
        # Status 2 without an answer is wrong usage.
        if run.returncode not in (0, 1, 2) or (run.returncode == 2 and answers.tell() == 0):
            why = run.stderr[-1000:].decode(errors="replace").strip()
            raise RuntimeError(f"{command[0]} ended with {run.returncode}: {why}")
        answers.seek(0)
        with open(unfinished, "wb") as target:
            result = write_answers(answers, lines_before, target, run.returncode)
    os.replace(unfinished, part)
    return result


def lines_before_blocks(client, blocks):
    """How many lines of its file stand before each block. One that cannot be read has none: it fails
    when it is to be parsed."""
    counts = client.map(count_lines, blocks, pure=False)
    wait(counts)
    before = []
    lines = 0
    for block, count in zip(blocks, counts):
        lines = lines if block.offset else 0
        before.append(lines)
        lines += count.result() if count.status == "finished" else 0
    return before


def run_blocks(client, blocks, folder, command, retries):
    """The sum of all tallies, and what failed: the block with the reason."""
    # Names of one length, which their order needs.
    digits = max(5, len(str(len(blocks))))
    parts = [folder / f"part-{number:0{digits}}.jsonl" for number in range(len(blocks))]
    tasks = client.map(parse_block, blocks, lines_before_blocks(client, blocks), parts,
                       command=command, retries=retries, pure=False)
    block_of = {task.key: block for task, block in zip(tasks, blocks)}
    total = empty_tally()
    failed = []
    for task in as_completed(tasks):
        if task.status != "finished":
            failed.append((block_of[task.key], str(task.exception())))
            continue
        total = sum_of(total, task.result())
    return total, failed


def print_tables(total):
    print("responses  error")
    for code, count in sorted(total.codes.items()):
        print(f"{count:9}  {code:5}")
    if total.refused:
        print(f"{total.refused:9}      -  could not be read")
    if total.findings:
        print("\nresponses  findings  finding")
    for (finding, severity), count in sorted(total.findings.items()):
        print(f"{total.responses[finding, severity]:9}  {count:8}  {finding} ({severity})")


def table_of(total, failed):
    return {
        "errorCodes": dict(sorted(total.codes.items())),
        "findings": {
            finding: {"responses": total.responses[finding, severity], "findings": count}
            for (finding, severity), count in sorted(total.findings.items())},
        "refused": total.refused,
        "failedBlocks": len(failed),
    }


def positive(text):
    number = int(text)
    if number < 1:
        raise ValueError(text)
    return number


def arguments():
    given = sys.argv[1:]
    end = given.index("--") if "--" in given else len(given)
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--out", required=True, type=pathlib.Path, metavar="FOLDER")
    parser.add_argument("--scheduler", metavar="ADDRESS",
                        help="or a scheduler file; default: a cluster on this machine")
    parser.add_argument("--workers", type=positive, help="processes of the cluster on this machine")
    parser.add_argument("--command", default="tamzo-vast", help="how a worker calls tamzo-vast")
    parser.add_argument("--block", type=positive, default=16 << 20, metavar="BYTES")
    parser.add_argument("--retries", type=int, default=2, help="of a block that fails")
    parser.add_argument("files", nargs="+", metavar="FILE")
    options = parser.parse_args(given[:end])
    # Dask gives each core a task.
    options.command = [*shlex.split(options.command), "batch", "-j", "1", *given[end + 1:]]
    return options


def client_of(options):
    if options.scheduler and options.scheduler.endswith(".json"):
        return Client(scheduler_file=options.scheduler)
    if options.scheduler:
        return Client(options.scheduler)
    return Client(LocalCluster(n_workers=options.workers, threads_per_worker=1, processes=True,
                               dashboard_address=None))


def main():
    options = arguments()
    folder = options.out.resolve()
    folder.mkdir(parents=True, exist_ok=True)
    if any(folder.iterdir()):
        sys.exit(f"{folder} is not empty")
    blocks = [block for path in options.files for block in blocks_of(path, options.block)]
    with client_of(options) as client:
        total, failed = run_blocks(client, blocks, folder, options.command, options.retries)
    for left_over in folder.glob("*.unfinished"):
        left_over.unlink()
    for block, why in failed:
        print(f"{block.path}, from byte {block.offset}: {why}", file=sys.stderr)
    (folder / "table.json").write_text(json.dumps(table_of(total, failed), indent=2) + "\n")
    print_tables(total)
    return 3 if failed else total.status


if __name__ == "__main__":
    sys.exit(main())
