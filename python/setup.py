"""A wheel with the libraries in zelm/_libs is for one platform, one without them for all; both for every Python 3."""

from pathlib import Path

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

HAS_LIBRARIES = any((Path(__file__).parent / "zelm" / "_libs").glob("*.so.*"))


class Wheel(bdist_wheel):
    def finalize_options(self):
        super().finalize_options()
        self.root_is_pure = not HAS_LIBRARIES

    def get_tag(self):
        python, abi, platform = super().get_tag()
        return ("py3", "none", platform) if HAS_LIBRARIES else (python, abi, platform)


class Platform(Distribution):
    """Goes where packages of one platform go, when it has libraries."""

    def has_ext_modules(self):
        return HAS_LIBRARIES


setup(cmdclass={"bdist_wheel": Wheel}, distclass=Platform)
