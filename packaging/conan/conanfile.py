"""The library as a package of Conan 2.

    conan create packaging/conan --build=missing

Not run by this project's tests, which compile it and compare it with CMakeLists.txt: there is no
Conan where they run.
"""

import pathlib

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy

required_conan_version = ">=2.0"

# What a build of the library alone reads, from the top of the tree.
SOURCES = (
    "CMakeLists.txt", "cmake/*", "include/*", "base/*", "capi/*", "net/*", "sdk/*", "vast/*", "xml/*",
    "debian/copyright",
)


class TamzoVast(ConanFile):
    name = "tamzo-vast"
    version = "8.0.0"
    description = "VAST response parser of a mobile video-advertising SDK"
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False], "with_curl": [True, False]}
    default_options = {"shared": False, "fPIC": True, "with_curl": True}
    implements = ["auto_shared_fpic"]

    def export_sources(self):
        top = pathlib.Path(self.recipe_folder).parent.parent
        for pattern in SOURCES:
            copy(self, pattern, str(top), self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        self.requires("libxml2/[>=2.9 <3]")
        if self.options.with_curl:
            self.requires("libcurl/[>=7.85 <9]")
        self.requires("rapidjson/[*]", visible=False)
        self.requires("fast_float/[>=3]", visible=False)
        self.requires("utfcpp/[>=3]", visible=False)

    def validate(self):
        check_min_cppstd(self, 20)

    def generate(self):
        CMakeDeps(self).generate()
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables.update({
            "TAMZO_WITH_CURL": bool(self.options.with_curl),
            "TAMZO_BUILD_TOOLS": False,
            "TAMZO_BUILD_TESTS": False,
            "TAMZO_DEVELOPER": False,
        })
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "copyright", f"{self.source_folder}/debian", f"{self.package_folder}/licenses")

    def package_info(self):
        self.cpp_info.libs = ["tamzovast"]
        self.cpp_info.set_property("cmake_file_name", "TamzoVast")
        self.cpp_info.set_property("cmake_target_name", "TamzoVast::TamzoVast")
        self.cpp_info.set_property("pkg_config_name", "tamzovast")
        if self.options.shared:
            self.cpp_info.defines = ["TAMZO_SHARED"]
        elif self.settings.os in ("Linux", "FreeBSD", "Android"):
            self.cpp_info.exelinkflags = ["-Wl,--exclude-libs,libtamzovast.a"]
            self.cpp_info.sharedlinkflags = ["-Wl,--exclude-libs,libtamzovast.a"]
        if self.settings.os in ("Linux", "FreeBSD"):
            self.cpp_info.system_libs = ["m", "pthread"]
