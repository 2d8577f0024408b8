"""Parses a response through the interface for C, as a program in Python does.

    use_library.py RESPONSE
"""

import ctypes
import pathlib
import sys


class Text(ctypes.Structure):
    _fields_ = [("data", ctypes.c_void_p), ("size", ctypes.c_size_t)]


library = ctypes.CDLL("libtamzovast.so.8")
library.tamzo_vast_parse.argtypes = [ctypes.c_char_p, ctypes.c_size_t, ctypes.c_void_p,
                                     ctypes.POINTER(ctypes.c_void_p)]
library.tamzo_vast_ad_adID.argtypes = [ctypes.c_void_p]
library.tamzo_vast_ad_adID.restype = Text
library.tamzo_vast_ad_release.argtypes = [ctypes.c_void_p]

response = pathlib.Path(sys.argv[1]).read_bytes()
ad = ctypes.c_void_p()
if library.tamzo_vast_parse(response, len(response), None, ctypes.byref(ad)) != 0:
    sys.exit("not parsed")
identity = library.tamzo_vast_ad_adID(ad)
identity = ctypes.string_at(identity.data, identity.size).decode()
library.tamzo_vast_ad_release(ad)
if f'<Ad id="{identity}"' not in response.decode():
    sys.exit(f"another ad: {identity!r}")
print(f"python: {identity}")
