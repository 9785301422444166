"""A recipe for this checkout: conan create packaging/conan

Not tried: Conan is not among what the project is tested with. The names and versions of the packages required are
assumptions, and so is that their pkg-config files have the names which our CMake files ask for. libmpv, libsecret,
systemd (sd-bus), Pango and librsvg are taken from the system.
"""

from pathlib import Path

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy
from conan.tools.gnu import PkgConfigDeps


class Zorvan(ConanFile):
    name = "zorvan"
    version = "0.1.0"
    description = "A toolkit library for desktop applications on Linux"
    settings = "os", "compiler", "build_type", "arch"
    options = {"shared": [True, False]}
    default_options = {"shared": True}
    requires = (
        "expat/[>=2.5]", "ffmpeg/[>=5]", "giflib/[>=5.2]", "icu/[>=72]", "libarchive/[>=3.6]", "libexif/[>=0.6]",
        "libheif/[>=1.15]", "libjpeg-turbo/[>=2.1]", "libpng/[>=1.6]", "libsodium/[>=1.0]", "libtiff/[>=4.5]",
        "libwebp/[>=1.2]", "nlohmann_json/[>=3.11]", "onetbb/[>=2021.8]", "pixman/[>=0.42]", "sqlite3/[>=3.40]",
        "zlib/[>=1.2]",
    )

    def export_sources(self):
        root = Path(self.recipe_folder).parents[1]
        for pattern in ("CMakeLists.txt", "CHANGELOG.md", "README.md", "cmake/*", "zorvan/*", "packaging/*",
                        "examples/*", "docs/*"):
            copy(self, pattern, root, self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        PkgConfigDeps(self).generate()
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["ZORVAN_TESTS"] = False
        toolchain.cache_variables["BUILD_SHARED_LIBS"] = bool(self.options.shared)
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # The package of CMake that is installed says all.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = ["lib/cmake/Zorvan"]
