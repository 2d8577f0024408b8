"""Checks that the privacy manifest for iOS tells the truth about a static library.

    check-privacy.py PrivacyInfo.xcprivacy libtamzovast.a

It declares no use of an interface that Apple wants a reason for; so the library may call none of those
that are functions.
"""

import plistlib
import subprocess
import sys

# File times, time since the start of the system, free space; both spellings where systems differ.
WITH_REASON = {
    "stat", "stat64", "fstat", "fstat64", "lstat", "lstat64", "fstatat", "fstatat64",
    "getattrlist", "fgetattrlist", "getattrlistat", "getattrlistbulk",
    "mach_absolute_time", "statfs", "statfs64", "statvfs", "statvfs64", "fstatfs", "fstatfs64",
    "fstatvfs", "fstatvfs64",
}
EMPTY = {"NSPrivacyTracking": False, "NSPrivacyTrackingDomains": [],
         "NSPrivacyCollectedDataTypes": [], "NSPrivacyAccessedAPITypes": []}


def main(manifest, library):
    with open(manifest, "rb") as file:
        if plistlib.load(file) != EMPTY:
            sys.exit(f"{manifest} declares something: add here what it is checked against")
    symbols = subprocess.run(["nm", "--undefined-only", library], stdout=subprocess.PIPE, text=True,
                             check=True).stdout
    called = {line.split()[-1].split("@")[0] for line in symbols.splitlines() if " U " in line}
    if "xmlParseDocument" not in called:
        sys.exit(f"{library} is not the library")
    print(f"{len(called)} functions called, of those with a reason: {called & WITH_REASON or 'none'}")
    return bool(called & WITH_REASON)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
