# The front door; CMakePresets.json has the builds behind it.
#
#   make demo     print a receipt on the virtual printer and leave a picture of it: over TCP, or with
#                 LINK=serial, usb or parallel over one of these; with FAULT=paper-out, cover-open,
#                 cutter-jam, power-off or connection-lost something goes wrong; with PAGE=1 the
#                 printer shows itself in a browser until it is interrupted
#   make test     build the 32-bit library and run every test
#   make manual   the manual, as pages for man and for a browser, in build/native/manual
#   make package  Debian packages, for this machine and for i386, in build/package
#   make format   format the sources; make lint checks them
#   make bench    how fast things are, in both widths
#   make sanitize the same tests natively, under the sanitizers, and each fuzzer for some seconds
#   make fuzz     each fuzzer in both widths for FUZZ_SECONDS (3600); TARGET=links chooses one
#   make coverage which lines and branches of the library the tests run, in build/coverage/report.txt
#   make valgrind the 32-bit tests under memcheck; build/valgrind/report.txt; PROGRAM=names chooses
#   make soak     tens of thousands of receipts on every link while faults fall at random, and the
#                 figures in build/soak/report.txt; then hundreds in real time on the virtual
#                 printer, which is killed at times as well; SOAK_RECEIPTS=n, SOAK_PRINTER_RECEIPTS=n,
#                 SEED=n and LINK= choose; SOAK_SECONDS is for the threads
#   make soak-threads  every operation from many threads, under the thread sanitizer

JOBS ?= 2
LINK ?= tcp
PRESETS := asan tsan
FUZZ_SECONDS ?= 3600

# A test in real time may meet a machine that stalls for longer than the library waits for a printer;
# once more tells that from a fault.
CTEST := ctest --parallel $(JOBS) --repeat until-pass:2

all: build/i386/libTZVIO.so.0

# ninja decides what is out of date.
.PHONY: all demo test bench manual package sanitize fuzz fuzz-briefly format lint clean FORCE \
  soak soak-threads coverage valgrind
build/i386/libTZVIO.so.0: FORCE
	@tools/install-dependencies.sh test
	@cmake --preset i386 >/dev/null
	@cmake --build --preset i386 --parallel $(JOBS)

demo:
	@tools/install-dependencies.sh demo
	@tools/demo.sh $(JOBS) $(LINK) "$(FAULT)" "$(PAGE)"

test: build/i386/libTZVIO.so.0
	@cmake --preset native >/dev/null
	@cmake --build --preset native --parallel $(JOBS)
	@$(CTEST) --preset i386
	@$(CTEST) --preset native

bench: bench-native bench-i386
bench-%:
	@tools/install-dependencies.sh bench
	@tools/benchmark-source.sh build/benchmark-source
	@cmake --preset $* -DTZVIO_BENCHMARKS=ON >/dev/null
	@cmake --build --preset $* --parallel $(JOBS) --target benchmarks
	@set -e; for program in build/$*/benchmarks/*; do $$program $(BENCH); done

manual:
	@tools/install-dependencies.sh manual
	@cmake --preset native >/dev/null
	@cmake --build --preset native --parallel $(JOBS) --target manual
	@echo "The manual: $(CURDIR)/build/native/manual/html/tzvio.html"

package:
	@tools/install-dependencies.sh package
	@tools/package.sh $(JOBS)

sanitize: $(PRESETS:%=sanitize-%) fuzz-briefly
sanitize-%:
	@tools/install-dependencies.sh test
	@cmake --preset $* >/dev/null
	@cmake --build --preset $* --parallel $(JOBS)
	@$(CTEST) --preset $*

fuzz: fuzzers-fuzz fuzzers-fuzz-i386
	@JOBS=$(JOBS) tools/fuzz.sh $(FUZZ_SECONDS) $(TARGET)

# A minute of running in all.
fuzz-briefly: fuzzers-fuzz fuzzers-fuzz-i386
	@JOBS=$(JOBS) tools/fuzz.sh 5

fuzzers-%:
	@tools/install-dependencies.sh fuzz
	@cmake --preset $* >/dev/null
	@cmake --build --preset $* --parallel $(JOBS)

valgrind:
	@tools/install-dependencies.sh valgrind
	@cmake --preset i386 >/dev/null
	@cmake --build --preset i386 --parallel $(JOBS)
	@JOBS=$(JOBS) tools/valgrind.sh $(PROGRAM)

coverage:
	@tools/install-dependencies.sh coverage
	@cmake --preset coverage >/dev/null
	@cmake --build --preset coverage --parallel $(JOBS)
	@find build/coverage -name '*.gcda' -delete
	@$(CTEST) --preset coverage
	@tools/coverage.sh

soak:
	@tools/install-dependencies.sh test
	@cmake --preset native >/dev/null
	@cmake --build --preset native --parallel $(JOBS) --target soak
	@tools/soak.sh

soak-threads:
	@tools/install-dependencies.sh test
	@cmake --preset tsan >/dev/null
	@cmake --build --preset tsan --parallel $(JOBS) --target concurrency_tests
	@TSAN_OPTIONS=halt_on_error=1 TZVIO_SECONDS=$${SOAK_SECONDS:-300} build/tsan/tests/soak/concurrency_tests

format:
	@tools/install-dependencies.sh lint
	@tools/format.sh

lint:
	@tools/install-dependencies.sh lint
	@tools/lint.sh

clean:
	rm -rf build
