"""Runs what tests the classes for Java.

    check_java.py junit JAVA...          the tests of JUnit, with JNI's own checks on: a line of
                                         theirs is a failure
    check_java.py records DATA JAVA...   every response of DATA: each property that the classes have
                                         is that of the record's JSON
    check_java.py memory JAVA...         21,000 records, of failures too, in a small heap: the process
                                         does not grow
    check_java.py heap JAVA...           a heap that is too small for an ad is an error of Java's, and
                                         the next ad is read

JAVA is the command up to the name of the class.
"""

import json
import math
import pathlib
import re
import subprocess
import sys

CLASSES = "RecordTest TextsTest HooksTest HandlesTest FetchTest".split()


def run(command, expected=0):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    text = done.stdout.decode()
    if done.returncode != expected:
        sys.exit(f"{text[-20000:]}\nstatus {done.returncode}")
    return text


def complaints_of_jni(text):
    return [line for line in text.splitlines()
            if re.match(r"(WARNING|FATAL|Warning:|\*\*\*)|.*(FATAL ERROR in native|in native method)", line)]


def junit(*java):
    text = run([java[0], "-Xcheck:jni", "-Xmx128m", *java[1:], "org.junit.runner.JUnitCore",
                *(f"com.tamzo.vast.{name}" for name in CLASSES)])
    if complaints := complaints_of_jni(text):
        sys.exit("\n".join(complaints))
    print(text.strip().splitlines()[-1])


def trimmed(entries):
    """The URLs of trackers below the top are trimmed in JSON."""
    return {name: [{**each, "url": each["url"] and each["url"].strip(" \t\r\n")} for each in all_]
            for name, all_ in entries.items()}


def companion(entry):
    urls = [{"creativeType": each["type"], "url": each["url"]} for each in entry["staticResources"]]
    return {**entry, "staticResources": urls, "trackers": trimmed(entry["trackers"])}


def verification(entry):
    scripts = [{key: each[key] for key in ("url", "apiFramework", "browserOptional")}
               for each in entry["javascriptResources"]]
    programs = [{key: each[key] for key in ("url", "apiFramework", "type")}
                for each in entry["executableResources"]]
    return {"vendor": entry["vendor"], "javaScriptResources": scripts,
            "executableResources": programs, "trackers": trimmed(entry["trackers"]),
            "verificationParameters": entry["verificationParameters"]}


def extra_actions(value):
    if value["json"] is not None:
        return json.loads(value["json"])
    return [json.loads(each["json"]) if each["icon"] is None else
            {"icon": {"program": next((a["value"] for a in each["icon"]["attributes"]
                                       if a["name"] == "program"), None),
                      "xml": each["icon"]["xml"]}}
            for each in value["entries"]]


def elements(entries):
    return [{"xml": each["xml"]} for each in entries]


# What the JSON of a record has where the classes have something else.
AS_JSON = {
    "duration": lambda value: {"text": value["text"], "durationInSeconds": value["seconds"]},
    "companionAds": lambda value: [{"companions": [companion(each) for each in ad["companions"]]}
                                   for ad in value],
    "measurementProviderList": lambda value: [verification(each) for each in value],
    "extraActions": extra_actions,
    "cards": elements,
    "hotspotList": elements,
    "iconMap": lambda value: {key: {"xml": each["xml"], "text": each["text"]}
                              for key, each in value.items()},
}
NUMBERS = {"Infinity": "inf", "-Infinity": "-inf", "NaN": "nan"}


def as_json(record):
    said = {}
    for name, value in record.items():
        if value is not None and name in AS_JSON:
            value = AS_JSON[name](value)
        said[name] = NUMBERS.get(value, value) if isinstance(value, str) else value
    return said


def same(java, wanted):
    if isinstance(java, float) and isinstance(wanted, (int, float)):
        return math.isclose(java, wanted, rel_tol=1e-15)
    return java == wanted


def records(data, *java):
    files = sorted(str(path) for path in pathlib.Path(data).rglob("*.xml")
                   if not re.search(r"\.\d\.xml$", path.name))
    lines = run([*java, "com.tamzo.vast.DumpRecords", *files]).splitlines()
    if not files or len(lines) != 2 * len(files):
        sys.exit(f"{len(files)} files, {len(lines)} lines")
    failed = False
    written = set()
    for file, said, wanted in zip(files, lines[::2], lines[1::2]):
        record, expected = as_json(json.loads(said)), json.loads(wanted)
        if record.keys() != expected.keys():
            sys.exit(f"not the same properties: {sorted(record.keys() ^ expected.keys())}")
        for name in expected:
            if expected[name]:
                written.add(name)
            if not same(record[name], expected[name]):
                failed = True
                print(f"{file}: {name} is {record[name]!r}, not {expected[name]!r}")
    print(f"{len(files)} records, {len(written)} of {len(expected)} properties written in some")
    return int(failed or len(written) < 60)


def memory(*java):
    print(run([java[0], "-Xms24m", "-Xmx24m", "-XX:+AlwaysPreTouch", "-XX:+UseSerialGC",
                "-XX:TieredStopAtLevel=1", *java[1:], "com.tamzo.vast.ManyRecords"]).strip())


def heap(*java):
    text = run([java[0], "-Xmx24m", "-Xcheck:jni", *java[1:], "com.tamzo.vast.SmallHeap"])
    if complaints := complaints_of_jni(text):
        sys.exit("\n".join(complaints))
    print(text.strip())


if __name__ == "__main__":
    CHECKS = {"junit": junit, "records": records, "memory": memory, "heap": heap}
    sys.exit(CHECKS[sys.argv[1]](*sys.argv[2:]))
