# The Debian packages that each kind of work needs. Read by the scripts beside it.
# shellcheck shell=bash disable=SC2034
build_packages=(
  g++ cmake ninja-build pkg-config
  libxml2-dev libcurl4-openssl-dev rapidjson-dev libfast-float-dev libutfcpp-dev
  libcli11-dev libfmt-dev libicu-dev libtbb-dev
)
test_packages=(googletest nlohmann-json3-dev nodejs node-jsdom python3)
check_packages=(
  clang clang-tidy clang-format libc++-dev libc++abi-dev libclang-rt-14-dev
  libbenchmark-dev valgrind gcovr
)
