#!/bin/sh
# The commands of docs/packaging.md, as the tests run them: in a folder with two builds of the library,
# build/static and build/shared, and with player.c, a program in C.
set -eu

# ---- From source
cmake --install build/static --prefix "$HOME/tamzo"
cmake --install build/shared --prefix "$HOME/tamzo"

# ---- What an image carries to run programs
cmake --install build/shared --prefix "$HOME/image" --component runtime

# ---- pkg-config
export PKG_CONFIG_PATH="$HOME/tamzo/lib/pkgconfig"
cc -std=c11 player.c -o player $(pkg-config --cflags --libs tamzovast)
LD_LIBRARY_PATH="$HOME/tamzo/lib" ./player response.xml

# ---- The static library
cc -std=c11 player.c -o player-static $(pkg-config --cflags tamzovast) \
  -L"$HOME/tamzo/lib" -l:libtamzovast.a $(pkg-config --static --libs-only-other tamzovast) \
  $(pkg-config --libs libxml-2.0 libcurl) -lstdc++ -lm
./player-static response.xml

# ---- Python
LD_LIBRARY_PATH="$HOME/tamzo/lib" python3 use_library.py response.xml
