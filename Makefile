# Front door: `make` builds, `make test` runs every test.
JOBS ?= 2
BUILD := build
ASAN_BUILD := build-asan

.PHONY: all build test test-plain test-sanitized clean bootstrap

all: build

bootstrap:
	@scripts/bootstrap

build:
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

# The whole suite twice: as built, then under AddressSanitizer and
# UndefinedBehaviorSanitizer (any report fails the run).
test: bootstrap
	@cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DVERBGW_SANITIZE=ON >/dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
		ctest -j $(JOBS) --output-on-failure
	@$(MAKE) --no-print-directory build
	@cd $(BUILD) && ctest -j $(JOBS) --output-on-failure

clean:
	rm -rf $(BUILD) $(ASAN_BUILD)
