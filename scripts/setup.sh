# shellcheck shell=bash
# The packages that the other scripts need, by their Debian names. Sourced, not run.

build_packages=(g++ cmake ninja-build pkg-config libcli11-dev libfftw3-dev libgd-dev
  libeigen3-dev nlohmann-json3-dev libgdal-dev libhdf5-dev)
test_packages=(libgtest-dev libbenchmark-dev python3-numpy mandoc zsh gdal-bin)
# Without Slurm the tests of stacks on a cluster are skipped.
slurm_packages=(munge slurmctld slurmd slurm-client)
# Without pybind11 the Python package is left out.
python_packages=(pybind11-dev python3-dev)
# The fuzzers: clang with its libFuzzer and sanitizers.
fuzz_packages=(clang libclang-rt-dev)
# Tests for another processor: cross compiler, emulator, and the sources of the test library.
aarch64_packages=(g++-aarch64-linux-gnu qemu-user googletest)
# The Debian packages, and a bare Debian to try them in.
package_packages=(dpkg-dev mmdebstrap)
lint_packages=(clang-format clang-tidy cppcheck)
# The presets configure the tests and benchmarks as well.
demo_packages=("${build_packages[@]}" "${test_packages[@]}")

# Whether a package's part that we use is there, wherever it came from.
is_present() {
  case $1 in
    ninja-build) command -v ninja ;;
    libcli11-dev) pkg-config --exists CLI11 ;;
    libfftw3-dev) pkg-config --exists fftw3 ;;
    libgd-dev) pkg-config --exists gdlib ;;
    libeigen3-dev) pkg-config --exists eigen3 ;;
    nlohmann-json3-dev) pkg-config --exists nlohmann_json ;;
    libgdal-dev) pkg-config --exists gdal ;;
    libhdf5-dev) pkg-config --exists hdf5 ;;
    gdal-bin) command -v gdal_translate ;;
    pybind11-dev) [ -e /usr/include/pybind11/pybind11.h ] ;;
    python3-dev) [ -e /usr/bin/python3-config ] ;;
    libgtest-dev) pkg-config --exists gtest ;;
    libbenchmark-dev) pkg-config --exists benchmark ;;
    libclang-rt-dev) [ -e "$(clang++ -print-file-name=libclang_rt.fuzzer-x86_64.a)" ] ;;
    python3-numpy) /usr/bin/python3 -c 'import numpy' ;;
    g++-aarch64-linux-gnu) command -v aarch64-linux-gnu-g++ ;;
    qemu-user) command -v qemu-aarch64 ;;
    googletest) [ -d /usr/src/googletest ] ;;
    munge) has_daemon munged ;;
    slurmctld | slurmd) has_daemon "$1" ;;
    slurm-client) command -v sbatch ;;
    dpkg-dev) command -v dpkg-shlibdeps ;;
    *) command -v "$1" ;;
  esac >/dev/null 2>&1
}

# Whether a daemon is installed; the folders of daemons are not on everybody's path.
has_daemon() {
  PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin command -v "$1"
}

# install_packages NAME...: installs what is missing, without a question. Ends the script where
# that is not possible, and says what is missing.
install_packages() {
  local name missing=() root=()
  for name in "$@"; do
    is_present "$name" || missing+=("$name")
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  if ! command -v apt-get >/dev/null; then
    printf 'Please install these packages (the names are those of Debian): %s\n' \
      "${missing[*]}" >&2
    exit 1
  fi
  [ "$(id -u)" -eq 0 ] || root=(sudo)
  printf 'Installing %s\n' "${missing[*]}"
  "${root[@]}" apt-get update -qq
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}
