"""Opens HTML reports in headless Chromium and compares what it shows with golden pictures.

    check-report.py COMMAND [--update]

Pictures are compared by the mean brightness of blocks, so that another release of the browser or
another serif font is no failure, while a page without its style, its text or its colours is, and so is
one whose upper sections are missing. Ends with 77 (skipped) where there is no Chromium.
"""

import pathlib
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile
import zlib

FOLDER = pathlib.Path(__file__).parent
EXAMPLES = FOLDER.parent.parent / "docs" / "examples" / "operations"
BLOCK = 32
# Of all that stands out from the background of a golden picture, how much may differ. With another
# font of the same kind it is a tenth; without the style, or on a blank page, it is all.
MOST = 0.5
# Of 255, in the worst hundredth of the blocks.
WORST = 110

HOSTILE = """<VAST version="4.0"><Ad id="&quot;>&lt;script>document.title='owned'&lt;/script>"><InLine>
<AdSystem>&lt;img src=x onerror="document.title='owned'"></AdSystem>
<AdTitle>&lt;/title>&lt;svg onload=document.title='owned'>\u202e</AdTitle>
<Impression>javascript:document.title='owned'</Impression>
<Creatives><Creative><Linear><MediaFiles><MediaFile type="video/mp4" delivery="'onmouseover='x">
<![CDATA[</pre><script>document.title='owned'</script>]]></MediaFile></MediaFiles></Linear></Creative>
</Creatives></InLine></Ad></VAST>"""

# Name, response, width, height, and what else the browser is told.
PICTURES = [
    ("failed-light", "xmlns.xml", 1000, 900, ["--blink-settings=preferredColorScheme=1"]),
    ("failed-dark", "xmlns.xml", 1000, 900, ["--blink-settings=preferredColorScheme=0"]),
    ("playable-phone", "insecure.xml", 500, 1000, ["--blink-settings=preferredColorScheme=1"]),
]


def browser(name, arguments, page):
    with tempfile.TemporaryDirectory() as profile:
        return subprocess.run(
            [name, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
             "--force-device-scale-factor=1", f"--user-data-dir={profile}", *arguments,
             page.as_uri()], capture_output=True, check=False, timeout=100).stdout.decode()


def report(command, response, page):
    with open(page, "wb") as out:
        run = subprocess.run([command, "parse", "--format", "html", str(response)], stdout=out,
                             check=False)
    if run.returncode not in (0, 1):
        sys.exit(f"{command} failed")


def paeth(a, b, c):
    p = a + b - c
    return min((abs(p - a), 0, a), (abs(p - b), 1, b), (abs(p - c), 2, c))[2]


def pixels(png):
    """Width, bytes of a pixel, and the rows of a PNG of eight bits a channel."""
    at, data, width, channels = 8, b"", 0, 0
    while at < len(png):
        size, kind = struct.unpack(">I4s", png[at:at + 8])
        if kind == b"IHDR":
            width, _, _, colour = struct.unpack(">IIBB", png[at + 8:at + 18])
            channels = {0: 1, 2: 3, 6: 4}[colour]
        elif kind == b"IDAT":
            data += png[at + 8:at + 8 + size]
        at += 12 + size
    raw, stride, rows, before = zlib.decompress(data), width * channels, [], bytes(width * channels)
    for begin in range(0, len(raw), stride + 1):
        kind, row = raw[begin], bytearray(raw[begin + 1:begin + 1 + stride])
        for i in range(stride) if kind else ():
            left = row[i - channels] if i >= channels else 0
            corner = before[i - channels] if i >= channels else 0
            row[i] = (row[i] + (0, left, before[i], (left + before[i]) // 2,
                                paeth(left, before[i], corner))[kind]) & 255
        rows.append(row)
        before = row
    return width, channels, rows


def blocks(png):
    width, channels, rows = pixels(png)
    means = []
    for top in range(0, len(rows) - BLOCK + 1, BLOCK):
        for left in range(0, width - BLOCK + 1, BLOCK):
            total = sum(sum(row[left * channels:(left + BLOCK) * channels])
                        for row in rows[top:top + BLOCK])
            means.append(total / (BLOCK * BLOCK * channels))
    return means


def differs(actual, golden):
    if len(actual) != len(golden):
        return "another size"
    background = statistics.mode(round(brightness) for brightness in golden)
    seen = sum(abs(brightness - background) for brightness in golden)
    apart = sorted((abs(a - b) for a, b in zip(actual, golden)), reverse=True)
    part, worst = sum(apart) / seen, apart[len(apart) // 100]
    if part <= MOST and worst <= WORST:
        return None
    return f"{part:.0%} of what is seen, {worst:.1f} at worst"


def main(command, update):
    name = shutil.which("chromium") or shutil.which("google-chrome")
    if name is None:
        print("no Chromium")
        return 77
    command = str(pathlib.Path(command).resolve())
    failed = []
    with tempfile.TemporaryDirectory() as folder:
        page = pathlib.Path(folder) / "report.html"
        for title, response, width, height, more in PICTURES:
            report(command, EXAMPLES / response, page)
            shot = pathlib.Path(folder) / f"{title}.png"
            browser(name, [f"--screenshot={shot}", f"--window-size={width},{height}", *more], page)
            golden = FOLDER / "golden" / f"{title}.png"
            if update:
                shutil.copy(shot, golden)
            difference = differs(blocks(shot.read_bytes()), blocks(golden.read_bytes()))
            if difference is not None:
                failed.append(f"{title}: {difference}")
        hostile = pathlib.Path(folder) / "hostile.xml"
        hostile.write_text(HOSTILE, encoding="utf-8")
        report(command, hostile, page)
        shown = browser(name, ["--dump-dom"], page)
        if "<title>VAST:" not in shown or "<img" in shown or "<script" in shown:
            failed.append("a response has an effect in the page")
    print("\n".join(failed) or "as they should be")
    return int(bool(failed))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], "--update" in sys.argv[2:]))
