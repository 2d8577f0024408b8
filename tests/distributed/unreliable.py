"""Runs a command on standard input, but fails half-way through input that holds a mark.

    unreliable.py once|always FLAG MARK COMMAND...

`once`: kills the worker, that is its parent, and leaves the worker's id in the file FLAG, which makes
it reliable from then on. `always`: ends with status 70.
"""

import os
import pathlib
import signal
import subprocess
import sys

mode, flag, mark, *command = sys.argv[1:]
given = sys.stdin.buffer.read()
run = subprocess.run(command, input=given, stdout=subprocess.PIPE, check=False)
if mark.encode() not in given or (mode == "once" and pathlib.Path(flag).exists()):
    sys.stdout.buffer.write(run.stdout)
    sys.exit(run.returncode)
sys.stdout.buffer.write(run.stdout[:len(run.stdout) // 2])
sys.stdout.flush()
if mode == "always":
    sys.exit(70)
pathlib.Path(flag).write_text(str(os.getppid()))
os.kill(os.getppid(), signal.SIGKILL)
