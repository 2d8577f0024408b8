# The Debian packages that each kind of work needs. Read by the scripts beside it.
# shellcheck shell=bash disable=SC2034
build_packages=(
  g++ cmake ninja-build pkg-config
  libxml2-dev libcurl4-openssl-dev rapidjson-dev libfast-float-dev libutfcpp-dev
  libcli11-dev libfmt-dev libicu-dev libtbb-dev ca-certificates
)
test_packages=(
  googletest nlohmann-json3-dev libssl-dev nodejs node-jsdom
  python3 python3-distributed parallel
  openjdk-17-jdk-headless junit4 libjetbrains-annotations-java
)
check_packages=(
  clang clang-tidy clang-format libc++-dev libc++abi-dev libclang-rt-14-dev
  libbenchmark-dev valgrind gcovr eslint node-typescript
)
# Where they are missing, the tests that play the VPAID page in them are skipped.
browser_packages=(
  chromium chromium-driver xvfb openssl
  python3-gi python3-gi-cairo gir1.2-gtk-3.0 gir1.2-webkit2-4.1 gstreamer1.0-plugins-good
)
# Where it is missing, the example in Kotlin is not compiled.
kotlin_packages=(kotlin)
# For the builds for phones, with what scripts/sysroot.sh fetches.
cross_packages=(crossbuild-essential-arm64 crossbuild-essential-armhf qemu-user-static googletest)
# For the Debian packages, the bare Debian that they are tried in, and the check of the ABI.
packaging_packages=(
  debhelper dpkg-dev lintian mmdebstrap pkg-config python3 abigail-tools
  default-jdk-headless libjetbrains-annotations-java
)
