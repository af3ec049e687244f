# Debian 12 packages that each job needs; sourced by ./demo and ./check.
build_packages=(cmake ninja-build gcc g++ pkg-config)
measure_packages=(libtbb-dev libceres-dev libyaml-cpp-dev libzip-dev zlib1g-dev)
tool_packages=(libcli11-dev nlohmann-json3-dev libfmt-dev libgraphicsmagick1-dev libcairo2-dev libpng-dev libmd-dev
  libjs-three)
# The last three of the tests' render and read the plates that `zelm plate` draws; gm makes images worse in examples.
test_packages=(libgtest-dev binutils groff-base mandoc graphicsmagick poppler-utils librsvg2-bin python3-ezdxf)
clang_packages=(clang libclang-rt-14-dev)
# The tool's pages in a browser: chromium is 250 MB.
pages_packages=(chromium python3)
docs_packages=(doxygen)
tidy_packages=(clang-tidy)
abi_packages=(abigail-tools)
coverage_packages=(gcovr)
valgrind_packages=(valgrind libc6-dbg)
format_packages=(clang-format)
i386_packages=(gcc-multilib g++-multilib)
# OpenCV, which the benchmarks compare with: 160 MB in some 290 packages on a bare system, as calib3d brings the headers
# of half of that library; about a minute.
bench_packages=(libbenchmark-dev libmrcal-dev libopencv-imgproc-dev libopencv-calib3d-dev libeigen3-dev)
# The programs that files are exchanged with: 500 MB and more on a bare system.
peers_packages=(python3 python3-numpy python3-scipy python3-yaml python3-opencv python3-mrcal python3-image-geometry
  python3-camera-calibration-parsers pcl-tools)
# The Python package, with the system's Python; from zarr on what zelm.batch works with.
python_packages=(python3 python3-numpy python3-pytest python3-hypothesis python3-matplotlib python3-zarr python3-pil
  python3-tqdm python3-distributed)
# The wheel of the Python package, and the licences of what it brings.
wheel_packages=(patchelf binutils git python3 python3-numpy python3-setuptools python3-wheel python3-venv)
# C# and Octave: 400 MB on a bare system.
languages_packages=(mono-mcs mono-runtime libmono-system-core4.0-cil octave octave-dev)
# The notebooks of the Python package run.
notebooks_packages=(python3-nbconvert python3-ipykernel python3-opencv)
fresh_packages=(debootstrap git)
deb_packages=(debhelper dh-python dpkg-dev lintian git)
