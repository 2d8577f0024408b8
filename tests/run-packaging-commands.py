"""Runs the commands of docs/packaging.md on two builds, and looks at what they leave.

    run-packaging-commands.py STATIC_BUILD SHARED_BUILD
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PLAYED = "play: https://cdn.example/trail-shoes-360.mp4"


def main(static, shared):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "build").mkdir()
        (folder / "build/static").symlink_to(pathlib.Path(static).resolve())
        (folder / "build/shared").symlink_to(pathlib.Path(shared).resolve())
        shutil.copy(ROOT / "examples/parse_in_c.c", folder / "player.c")
        shutil.copy(ROOT / "examples/response.xml", folder)
        shutil.copy(ROOT / "debian/tests/use_library.py", folder)
        run = subprocess.run(["sh", "-e", ROOT / "examples/packaging/commands.sh"], cwd=folder,
                             env={**os.environ, "HOME": name}, capture_output=True, text=True,
                             check=False)
        faults = []
        if run.returncode:
            faults.append(run.stdout + run.stderr)
        if run.stdout.count(PLAYED) != 2 or "python: trail-shoes" not in run.stdout:
            faults.append(f"not played by each: {run.stdout}")
        image = [path.name for path in (folder / "image").rglob("*") if not path.is_dir()]
        if not image or not all(".so." in name for name in image):
            faults.append(f"in the image: {image}")
    print(*faults, sep="\n")
    return int(bool(faults))


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
