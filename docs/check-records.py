"""Checks that docs/examples/CASE.json is the record that the command gives for CASE.xml.

    check-records.py COMMAND
"""

import json
import pathlib
import subprocess
import sys


def main(command):
    cases = sorted((pathlib.Path(__file__).parent / "examples").glob("*.xml"))
    failed = not cases
    for response in cases:
        record = response.with_suffix(".json")
        run = subprocess.run([command, "parse", "--format", "json", str(response)],
                             capture_output=True, check=False)
        if run.returncode not in (0, 1):
            sys.exit(f"{command} failed: {run.stderr.decode()}")
        actual = json.loads(run.stdout)
        expected = json.loads(record.read_text(encoding="utf-8"))
        for name in sorted(actual.keys() | expected.keys()):
            if name not in actual or name not in expected or actual[name] != expected[name]:
                failed = True
                print(f"{record.name}: {name} is {expected.get(name, 'missing')!r}, "
                      f"the command gives {actual.get(name, 'nothing')!r}")
    print(f"{len(cases)} compared")
    return int(failed)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
