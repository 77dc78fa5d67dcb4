# The few commands of daily work; the build itself is CMake's (see CMakePresets.json).
#
#   make run [SCRIPT=file.py] [ARGS="..."]   runs a script in the host
#   make test                                builds and runs all tests
#   make bench                               measures, against limits taken in the same run
#   make describe                            writes the published surface to build/describe.json
#   make reference                           writes a page for each metaclass to build/reference
#   make install PREFIX=folder               installs libraries, headers, CMake package and Python package
#   make asan                                all tests under AddressSanitizer and UBSan
#   make tsan                                the C++ tests under ThreadSanitizer
#   make lint, make format                   clang-tidy (of what is installed) and clang-format

SCRIPT ?= examples/reverse_python.py
ARGS ?=
PREFIX ?= build/installed
PYTHON = /usr/bin/python3
HOST = PYTHONPATH=build/release/python $(PYTHON)
SOURCES = git ls-files '*.cpp' '*.h'

.PHONY: run test bench describe reference install asan tsan debug lint format packages build-release build-debug build-asan build-tsan

run: build-release
	@$(HOST) $(SCRIPT) $(ARGS)

test: build-release
	ctest --preset release

debug asan tsan: %: build-%
	ctest --preset $@

bench: build-release
	$(HOST) benchmarks/run.py --build build/release

describe: build-release
	$(HOST) -m umlmm describe > build/describe.json
	$(HOST) -m umlmm describe Kelm > build/describe-Kelm.json
	@echo "build/describe.json build/describe-Kelm.json"

reference: build-release
	@rm -rf build/reference
	@$(HOST) -m umlmm reference build/reference
	@echo "build/reference/index.md"

install: build-release
	cmake --install build/release --prefix $(abspath $(PREFIX))

build-release build-debug build-asan build-tsan: build-%: packages
	@cmake --preset $* > build/$*.log 2>&1 || { cat build/$*.log; exit 1; }
	@cmake --build --preset $*

packages:
	@mkdir -p build
	@tools/install-packages packages.txt

lint: build-release
	@tools/install-packages packages.txt packages-dev.txt
	@$(SOURCES) | xargs clang-format --dry-run --Werror
	@$(SOURCES) | grep '\.cpp$$' | grep -v '^tests/\|^benchmarks/\|^examples/' | xargs -P 2 -n 4 clang-tidy-16 -p build/release --quiet

format:
	@tools/install-packages packages-dev.txt
	@$(SOURCES) | xargs clang-format -i
