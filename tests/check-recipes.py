"""Checks what can be checked of the recipes for packages without their package managers.

    check-recipes.py versions       each names the version of CMakeLists.txt
    check-recipes.py options        each sets options of CMakeLists.txt alone
    check-recipes.py symbols        debian/ lists the functions for C that capi/symbols.txt does
    check-recipes.py conan CMAKE    the recipe compiles, and what it exports suffices for cmake
    check-recipes.py vcpkg CMAKE    the port is read as CMake and JSON, and calls what it should
    check-recipes.py --self-test
"""

import ast
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
CONAN = ROOT / "packaging/conan/conanfile.py"
PORT = ROOT / "packaging/vcpkg/ports/tamzo-vast"


def text_of(path):
    return (ROOT / path).read_text(encoding="utf-8")


def project_version():
    return re.search(r"project\(TamzoVast VERSION ([\d.]+)", text_of("CMakeLists.txt"))[1]


def value_of(python, name):
    """What a recipe in Python assigns to a name, at the top or in its class."""
    for node in ast.walk(ast.parse(python)):
        if isinstance(node, ast.Assign) and getattr(node.targets[0], "id", None) == name:
            return ast.literal_eval(node.value)
    return None


def faults_of_versions(version, found):
    return [f"{where}: {named}, not {version}" for where, named in found.items() if named != version]


def check_versions():
    symbols = text_of("debian/libtamzovast8.symbols")
    return faults_of_versions(project_version(), {
        "debian/changelog": re.match(r"tamzo-vast \(([^)]+)\)", text_of("debian/changelog"))[1],
        # What was added to the classes cannot be told from the pattern: the newest is asked for.
        "debian/libtamzovast8.symbols": re.search(r"\(symver\)TAMZO_VAST_\d+ (\S+)", symbols)[1],
        "conanfile.py": value_of(CONAN.read_text(encoding="utf-8"), "version"),
        "vcpkg.json": json.loads((PORT / "vcpkg.json").read_text(encoding="utf-8"))["version"],
    })


def faults_of_options(recipe, cmake):
    known = set(re.findall(r"\b(?:option|set|find_path)\((TAMZO_\w+)", cmake))
    return [f"{name} is no option" for name in sorted(set(re.findall(r"TAMZO_[A-Z_]+", recipe)) - known)]


def check_options():
    conan = CONAN.read_text(encoding="utf-8").replace('["TAMZO_SHARED"]', "")
    recipes = [conan, (PORT / "portfile.cmake").read_text(encoding="utf-8"), text_of("debian/rules")]
    return [fault for recipe in recipes for fault in faults_of_options(recipe, text_of("CMakeLists.txt"))]


def faults_of_symbols(listed, kept):
    found = re.findall(r"^ (tamzo_vast_\w+)@TAMZO_VAST_C_\d+ ", listed, re.MULTILINE)
    return [f"{name}: in one of the two lists" for name in sorted(set(found) ^ set(kept))]


def check_symbols():
    return faults_of_symbols(text_of("debian/libtamzovast8.symbols"), text_of("capi/symbols.txt").split())


def configures(cmake, source):
    """Whether cmake takes a copy of the tree that has what the recipe exports and nothing else."""
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder) / "source"
        for pattern in source:
            matches = [path for path in ROOT.glob(pattern) if path.exists()]
            if not matches:
                return f"{pattern}: there is no such file"
            for path in matches:
                target = copy / path.relative_to(ROOT)
                target.parent.mkdir(parents=True, exist_ok=True)
                if path.is_dir():
                    shutil.copytree(path, target, dirs_exist_ok=True)
                else:
                    shutil.copy(path, target)
        run = subprocess.run([cmake, "-S", copy, "-B", f"{folder}/build", "-DTAMZO_BUILD_TOOLS=OFF",
                              "-DTAMZO_BUILD_TESTS=OFF", "-DTAMZO_DEVELOPER=OFF"],
                             capture_output=True, text=True, check=False)
        return run.stderr if run.returncode else ""


def check_conan(cmake):
    recipe = CONAN.read_text(encoding="utf-8")
    for path in (CONAN, CONAN.parent / "test_package/conanfile.py"):
        compile(path.read_text(encoding="utf-8"), str(path), "exec")
    sources = value_of(recipe, "SOURCES")
    if not configures(cmake, [pattern for pattern in sources if pattern != "include/*"]):
        return ["cmake does without include/: this checks nothing"]
    told = configures(cmake, sources)
    return [told] if told else []


# What vcpkg offers to a port, saying what it was called with.
VCPKG = """
function(vcpkg_check_features)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "OUT_FEATURE_OPTIONS" "FEATURES")
  set(${arg_OUT_FEATURE_OPTIONS} -DTAMZO_WITH_CURL=ON PARENT_SCOPE)
endfunction()
foreach(name cmake_configure cmake_install cmake_config_fixup fixup_pkgconfig copy_pdbs
    install_copyright)
  cmake_language(EVAL CODE "function(vcpkg_${name})\\n  message(\\"${name} \\${ARGN}\\")\\nendfunction()")
endforeach()
"""


def check_vcpkg(cmake):
    manifest = json.loads((PORT / "vcpkg.json").read_text(encoding="utf-8"))
    faults = []
    if manifest["name"] != PORT.name:
        faults.append("vcpkg.json: its name is not that of its folder")
    missing = set(manifest["default-features"]) - set(manifest["features"])
    faults += [f"vcpkg.json: there is no feature {name}" for name in missing]
    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder) / "read.cmake"
        script.write_text(f'{VCPKG}set(PORT tamzo-vast)\nset(CURRENT_PACKAGES_DIR "{folder}/out")\n'
                          f'include("{PORT}/portfile.cmake")\n', encoding="utf-8")
        run = subprocess.run([cmake, "-P", script], capture_output=True, text=True, check=False)
        said = run.stderr
        if run.returncode:
            return [*faults, said]
        if not (pathlib.Path(folder) / "out/share/tamzo-vast/usage").exists():
            faults.append("portfile.cmake: installs no usage")
    for wanted in (f"cmake_configure SOURCE_PATH;{ROOT};", "-DTAMZO_WITH_CURL=ON", "cmake_install",
                   "CONFIG_PATH;lib/cmake/TamzoVast", f"install_copyright FILE_LIST;{ROOT}/debian"):
        if wanted not in said:
            faults.append(f"portfile.cmake: no {wanted} in\n{said}")
    return faults


def self_test():
    rows = {
        "versions": (faults_of_versions("2.0", {"a": "2.0", "b": "1.9"}), 1),
        "options": (faults_of_options("-DTAMZO_A=ON -DTAMZO_B=ON", "option(TAMZO_A x ON)"), 1),
        "symbols": (faults_of_symbols(" tamzo_vast_a@TAMZO_VAST_C_1 8\n tamzo_vast_b@TAMZO_VAST_C_1 8\n",
                                      ["tamzo_vast_b", "tamzo_vast_c"]), 2),
    }
    return [f"{name}: {told}" for name, (told, count) in rows.items() if len(told) != count]


def main(arguments):
    checks = {"versions": check_versions, "options": check_options, "symbols": check_symbols,
              "conan": check_conan, "vcpkg": check_vcpkg, "--self-test": self_test}
    faults = checks[arguments[0]](*arguments[1:])
    for fault in faults:
        print(fault)
    print(f"{len(faults)} faults")
    return int(bool(faults))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
