# The few commands of daily work; the build itself is CMake's (see CMakePresets.json).
#
#   make run [SCRIPT=file.py] [ARGS="..."]   builds the product alone, and runs a script in the host
#   make umlmm ARGS="info some.uml"          builds the product alone, and runs a command on model files
#   make test [MODELS=folder]                builds the rest, and runs all tests; also on the model files of a folder
#   make bench [MODELS=folder]               measures, against limits taken in the same run; or the model files of a folder
#   make bench-smoke                         runs every benchmark once, for a moment, without a look at the times
#   make describe                            writes the published surface to build/describe.json
#   make reference                           writes a page for each metaclass to build/reference
#   make docs                                makes a site of the pages, the reference and the gallery
#   make gallery                             draws what the recipes and examples make, to build/gallery
#   make install PREFIX=folder               installs libraries, headers, CMake package and Python package
#   make types                               what two checkers of types say of scripts; pyright comes from npm
#   make pictures-check                      pictures in a browser, texts of diagrams in their parsers, a notebook
#   make wheel [PYTHON=program]              makes a wheel, for Debian's Python or another one
#   make deb                                 makes Debian packages: libraries, what programs are built with, Python package
#   make asan                                all tests under AddressSanitizer and UBSan
#   make tsan                                the C++ tests under ThreadSanitizer
#   make fuzz-files                          a minute of the fuzzers of model files; longer ones are told there
#   make lint, make format                   clang-tidy (of what is installed) and clang-format

SCRIPT ?= examples/reverse_python.py
ARGS ?=
PREFIX ?= build/installed
PYTHON = /usr/bin/python3
HOST = PYTHONPATH=build/release/python $(PYTHON)
SOURCES = git ls-files '*.cpp' '*.h'
INSTALL_PACKAGES = @tools/install-packages

# A new tree of the release preset has the product alone. Tests and benchmarks join it when a target asks for them, and
# then they stay, so that going from one target to the other builds nothing again.
FIRST = $(if $(wildcard build/release/CMakeCache.txt),,-DUMLMM_TESTS=OFF -DUMLMM_BENCHMARKS=OFF)
CONFIGURE = @tools/configure

# Targets share a build tree.
.NOTPARALLEL:

.PHONY: run umlmm test types pictures-check bench bench-smoke describe reference docs gallery install wheel deb asan tsan \
  debug fuzz-files lint format product python generate packages test-packages node-tools

run: product
	@$(HOST) "$(SCRIPT)" $(ARGS)

umlmm: product
	@$(HOST) -m umlmm $(ARGS)

test: test-packages
	$(CONFIGURE) release $(FIRST) -DUMLMM_TESTS=ON
	@cmake --build --preset release
	$(if $(MODELS),MODELS="$$(realpath -- "$(MODELS)")" )ctest --preset release

types: python test-packages node-tools
	UMLMM_PYRIGHT="$(CURDIR)/tools/node/node_modules/.bin/pyright" $(HOST) -B -m pytest -q -p no:cacheprovider tests/types

pictures-check: product test-packages node-tools
	$(INSTALL_PACKAGES) packages-pictures.txt
	PYTHONPATH="$(CURDIR)/build/release/python" $(PYTHON) -B -m pytest -c tests/pytest.ini --durations=5 tests/pictures

debug asan tsan: test-packages
	$(CONFIGURE) $@
	@cmake --build --preset $@
	ctest --preset $@

# For as long as one likes, with what was found kept in a folder of one's own:
#   build/fuzz/bin/fuzz_files_load -dict=fuzz/files/xmi.dict FOLDER fuzz/files/seeds
fuzz-files: packages
	$(INSTALL_PACKAGES) packages-fuzz.txt
	$(CONFIGURE) fuzz -DCMAKE_CXX_COMPILER="$$(tools/versioned clang++)"
	@cmake --build --preset fuzz
	ctest --preset fuzz

bench bench-smoke: test-packages
	$(CONFIGURE) release $(FIRST) -DUMLMM_BENCHMARKS=ON
	@cmake --build --preset release --target umlmm_benchmarks
	$(HOST) benchmarks/run.py --build build/release $(if $(filter bench-smoke,$@),--smoke) \
	  $(if $(MODELS),--models "$$(realpath -- "$(MODELS)")")

describe: product
	$(HOST) -m umlmm describe > build/describe.json
	$(HOST) -m umlmm describe Kelm > build/describe-Kelm.json
	@echo "build/describe.json build/describe-Kelm.json"

reference: product
	@rm -rf build/reference
	@$(HOST) -m umlmm reference build/reference
	@echo "build/reference/index.md"

docs: product
	$(INSTALL_PACKAGES) packages-docs.txt
	@tools/make-docs build/release

gallery: product test-packages
	@tools/make-gallery build/release build

install: python
	cmake --install build/release --prefix "$$(realpath -m -- "$(PREFIX)")"

wheel: packages
	$(CONFIGURE) release $(FIRST) -DUMLMM_WHEEL_PYTHON="$$($(PYTHON) -c 'import sys; print(sys.executable)')"
	@cmake --build --preset release --target umlmm_wheel

deb: packages
	$(INSTALL_PACKAGES) packages-deb.txt
	$(CONFIGURE) release $(FIRST)
	@cmake --build --preset release --target umlmm_debs
	@ls build/release/packages/*.deb

# What a script needs; that and the stubs; the generated sources, of which the linter needs the headers.
product python generate: packages
	$(CONFIGURE) release $(FIRST)
	@cmake --build --preset release --target umlmm_$@

packages:
	$(INSTALL_PACKAGES) packages.txt

test-packages:
	$(INSTALL_PACKAGES) packages.txt packages-test.txt

# Tools that npm brings. Node.js may be there from elsewhere than Debian.
node-tools:
	@command -v npm > /dev/null || tools/install-packages packages-node.txt
	@cd tools/node && { cmp -s package-lock.json node_modules/.installed || { npm ci --silent && cp package-lock.json node_modules/.installed; }; }

lint: generate
	$(INSTALL_PACKAGES) packages-dev.txt
	@$(SOURCES) | xargs clang-format --dry-run --Werror
	@$(SOURCES) | grep '\.cpp$$' | grep -v '^tests/\|^benchmarks/\|^examples/\|^fuzz/' | xargs -P 2 -n 4 "$$(tools/versioned clang-tidy)" -p build/release --quiet

format:
	$(INSTALL_PACKAGES) packages-dev.txt
	@$(SOURCES) | xargs clang-format -i
