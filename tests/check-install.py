"""Checks that what a build installs may stand anywhere.

    check-install.py CMAKE BUILD      installs the build, static or shared, below a folder of the
                                      packager's, moves it, and links a program in C each time
    check-install.py CMAKE --configure SOURCE
                                      folders that are given as absolute ones, or of several levels
"""

import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
NEEDED_BY_STATIC = ["--print-requires-private", "tamzovast"]


def run(*command, **variables):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False,
                          env={**os.environ, **{name: str(value) for name, value in variables.items()}})
    if done.returncode:
        sys.exit(f"{command}: {done.stdout}{done.stderr}")
    return done.stdout


def pkg_config(prefix, *arguments):
    folder = next(prefix.rglob("pkgconfig"))
    return shlex.split(run("pkg-config", *arguments, PKG_CONFIG_PATH=folder))


def check_program(prefix):
    """By pkg-config alone; of a static library with what it names as private."""
    library = next(prefix.rglob("libtamzovast.*"))
    flags = pkg_config(prefix, "--cflags", "--libs", "tamzovast")
    if list(prefix.rglob("libtamzovast.a")):
        needs = [word for word in pkg_config(prefix, *NEEDED_BY_STATIC) if word.startswith("lib")]
        flags += pkg_config(prefix, "--static", "--libs-only-other", "tamzovast")
        flags += [*pkg_config(prefix, "--libs", *needs), "-lstdc++", "-lm"]
    program = prefix / "player"
    run("cc", "-std=c11", ROOT / "tests/capi/UseFromC.c", "-o", program, *flags)
    run(program, LD_LIBRARY_PATH=library.parent)
    program.unlink()


def check_place(cmake, build):
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder) / "root of a package"
        run(cmake, "--install", build, "--prefix", "/opt/a vendor", DESTDIR=root)
        staged = root / "opt/a vendor"
        if [path.name for path in root.iterdir()] != ["opt"]:
            yield f"not only below DESTDIR's prefix: {list(root.iterdir())}"
        check_program(staged)
        moved = pathlib.Path(folder) / "moved, with $igns"
        shutil.move(staged, moved)
        check_program(moved)
        yield from check_names_no_folder(moved, [build, ROOT, root])


def check_names_no_folder(prefix, folders):
    """Nothing that is read by programs and people names where it was built."""
    for path in prefix.rglob("*"):
        if path.is_file() and path.suffix in (".cmake", ".pc", ".h", ".1", ".bash", ".fish"):
            text = path.read_text(encoding="utf-8")
            for folder in folders:
                if str(folder) in text:
                    yield f"{path.name} names {folder}"


def check_components(cmake, build):
    kinds = {"runtime": (".so.",), "command": ("tamzo-vast",),
             "java": (".so", ".jar"),
             "development": (".h", ".cmake", ".pc", ".a", ".so", ".modulemap")}
    with tempfile.TemporaryDirectory() as folder:
        everything = pathlib.Path(folder) / "everything"
        run(cmake, "--install", build, "--prefix", everything)
        expected = {path.relative_to(everything) for path in everything.rglob("*")
                    if not path.is_dir()}
        found = []
        for component, endings in kinds.items():
            prefix = pathlib.Path(folder) / component
            run(cmake, "--install", build, "--prefix", prefix, "--component", component)
            for path in (path for path in prefix.rglob("*") if not path.is_dir()):
                found.append(path.relative_to(prefix))
                if not any(ending in path.name if ending in (".so.", "tamzo-vast")
                           else path.name.endswith(ending) for ending in endings):
                    yield f"{component} has {path.name}"
        if sorted(found) != sorted(expected):
            yield f"in one component and no other: {sorted(set(found) ^ expected)}"


def check_configure(cmake, source):
    vendor = "/opt/vendor"
    places = [  # prefix and LIBDIR that are given; prefix and libdir that pkg-config is told
        (vendor, "lib/two/levels", "${pcfiledir}/../../../..", "${prefix}/lib/two/levels"),
        (vendor, "/opt/libraries", vendor, "/opt/libraries"),
        ("/usr", "lib/triplet", "/usr", "${prefix}/lib/triplet"),
    ]
    for prefix, folder, expected_prefix, expected in places:
        with tempfile.TemporaryDirectory() as build:
            run(cmake, "-S", source, "-B", build, "-DTAMZO_BUILD_TOOLS=OFF", "-DTAMZO_BUILD_TESTS=OFF",
                "-DTAMZO_DEVELOPER=OFF", f"-DCMAKE_INSTALL_PREFIX={prefix}", f"-DCMAKE_INSTALL_LIBDIR={folder}")
            written = (pathlib.Path(build) / "tamzovast.pc").read_text(encoding="utf-8")
            if not written.startswith(f"prefix={expected_prefix}\nlibdir={expected}\n"):
                yield f"{prefix}, {folder}: no prefix={expected_prefix}, libdir={expected} in\n{written}"


def main(cmake, build, source=None):
    if source is not None:
        faults = list(check_configure(cmake, source))
    else:
        faults = [*check_place(cmake, pathlib.Path(build).resolve()), *check_components(cmake, build)]
    for fault in faults:
        print(fault)
    print(f"{len(faults)} faults")
    return int(bool(faults))


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
