# The two commands users need:
#   make demo   set up, build, and run the tarn tool on the sample RIP folder
#   make test   set up, build with AddressSanitizer and UBSan (clang), run every test;
#               also builds with GCC (warnings as errors) and checks the installed package
# Both start by installing any missing Debian packages (scripts/install-deps).

JOBS ?= $(shell nproc 2>/dev/null || echo 2)
STAGE := $(CURDIR)/build/stage
EXAMPLE_MODE := examples/rip/System/pmodes/Aurora64/Gloss\ Vinyl\ 720.pmx

.PHONY: all deps demo test layering release asan consumer format clean

all: release

deps:
	@scripts/install-deps

release: deps
	cmake --preset release -DTARN_WARNINGS_AS_ERRORS=ON
	cmake --build --preset release -j $(JOBS)

demo: release
	@echo "== tarn list examples/rip"
	build/release/tools/tarn list examples/rip
	@echo
	@echo "== tarn info $(EXAMPLE_MODE)"
	build/release/tools/tarn info $(EXAMPLE_MODE)
	@echo
	@echo "== tarn info examples/rip/System/printers/Hexa6.pdx"
	build/release/tools/tarn info examples/rip/System/printers/Hexa6.pdx
	@echo
	build/release/tools/tarn curves $(EXAMPLE_MODE) -o build/curves.svg
	@echo "== the curves of $(EXAMPLE_MODE) are drawn in build/curves.svg"

asan: deps
	cmake --preset asan-ubsan
	cmake --build --preset asan-ubsan -j $(JOBS)
	ctest --preset asan-ubsan -j $(JOBS)

# Installs the GCC build into a staging prefix and builds a separate project
# against it with find_package(tarn), then runs it.
consumer: release
	cmake --install build/release --prefix $(STAGE)
	PKG_CONFIG_PATH=$(STAGE)/lib/pkgconfig cmake -S tests/consumer -B build/consumer -G Ninja \
	  -DCMAKE_PREFIX_PATH=$(STAGE)
	cmake --build build/consumer
	LD_LIBRARY_PATH=$(STAGE)/lib build/consumer/tarn_consumer
	LD_LIBRARY_PATH=$(STAGE)/lib build/consumer/tarn_consumer_pc

test: layering asan consumer
	ctest --preset release -j $(JOBS)

# Fails on an include that goes up the layers of docs/architecture.md.
layering:
	scripts/check-layering

format:
	clang-format -i $$(git ls-files '*.h' '*.cpp')

clean:
	rm -rf build
