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

# The demo needs the library and the tool only; the tests and benchmarks wait
# for make test.
demo: deps
	cmake --preset release -DTARN_WARNINGS_AS_ERRORS=ON
	cmake --build --preset release -j $(JOBS) --target tarn_tool
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
	@echo
	@echo "== tarn media examples/rip Hexa6"
	build/release/tools/tarn media examples/rip Hexa6
	@echo
	build/release/tools/tarn media examples/rip/System/pmodes/Hexa6/Media/Labels_3x2.qmd -o build/labels.svg
	@echo "== the label template of Hexa6 is drawn in build/labels.svg"
	@echo
	build/release/tools/tarn postscript $(EXAMPLE_MODE) -o build/setup.ps
	@echo "== the PostScript set-up of $(EXAMPLE_MODE) is in build/setup.ps"
	@echo
	@echo "== tarn job examples/jobs/spring-poster.xml --check examples/rip"
	build/release/tools/tarn job examples/jobs/spring-poster.xml
	build/release/tools/tarn job examples/jobs/spring-poster.xml --check examples/rip

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
	# The installed tool runs without help from the environment, from any prefix.
	rm -rf $(STAGE)-moved && cp -a $(STAGE) $(STAGE)-moved
	env -u LD_LIBRARY_PATH $(STAGE)-moved/bin/tarn --version

test: layering asan consumer
	ctest --preset release -j $(JOBS)

# Fails on an include that goes up the layers of docs/architecture.md.
layering:
	scripts/check-layering

format:
	clang-format -i $$(git ls-files '*.h' '*.cpp')

clean:
	rm -rf build
