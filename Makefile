# Front door: `make` builds, `make test` runs every test.
JOBS ?= 2
BUILD := build
ASAN_BUILD := build-asan
ARM_BUILD := build-arm
DEVICE_BUILD := build-device
FUZZ_BUILD := build-fuzz
FUZZ_SECONDS ?= 60
FUZZ_HARNESSES := fuzz_form_decode fuzz_verb_plans

PORT ?= 8443
HTTP_PORT ?= 8080
SERVER ?= lighttpd
DEMO := $(BUILD)/demo

.PHONY: all build arm fuzz-build fuzz test demo package device device-image device-test memcheck loadtest bench clean bootstrap fresh-check mutation

all: build

bootstrap:
	@scripts/bootstrap

build:
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

# The gateway for real, exactly as a device serves it: lighttpd (or
# SERVER=apache, SERVER=nginx) with the shipped configuration, HTTPS on
# 127.0.0.1:$(PORT) and the redirect on $(HTTP_PORT), the simulated shelf as
# shelfctl, and two accounts made at the first start (their passwords in
# $(DEMO)/passwords). What the server reads is installed in $(DEMO), or
# for root, whose server drops to www-data, in /var/lib/verbgw-demo/.
# It installs and builds only what it needs (the server, the gateway, the
# simulated shelf); a demo still running from this checkout is left alone.
demo:
	@DEMO=$(DEMO) scripts/demo check
	@SERVER=$(SERVER) scripts/bootstrap demo
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS) --target verbgw shelfctl
	@DEMO=$(DEMO) PORT=$(PORT) HTTP_PORT=$(HTTP_PORT) SERVER=$(SERVER) \
		setpriv --pdeathsig TERM scripts/demo $(BUILD)

# The gateway for the shelf manager: 32-bit ARM, glibc (build-arm/verbgw).
# Its tests run under user-mode emulation with the host's stand-in tool.
arm: build
	@cmake -S . -B $(ARM_BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake \
		-DCMAKE_BUILD_TYPE=Release -DVERBGW_HOST_STUB_DIR=$(CURDIR)/$(BUILD)/tests/stub >/dev/null
	@cmake --build $(ARM_BUILD) -j $(JOBS)

# The shelf manager as a device: a Debian bookworm armhf root with the
# product's package installed and the simulated shelf, booted under
# qemu-system-arm, its HTTPS on 127.0.0.1:$(PORT) and the redirect on
# $(HTTP_PORT). The root is cached in ~/.cache/verbgw-device
# (VERBGW_DEVICE_CACHE); the first build takes about 6 minutes.
device: device-image
	@PORT=$(PORT) HTTP_PORT=$(HTTP_PORT) setpriv --pdeathsig TERM scripts/device boot

# The package for the target (build-device/package/) and the image.
device-image:
	@DEVICE=yes scripts/bootstrap demo
	@cmake -S . -B $(DEVICE_BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake \
		-DCMAKE_BUILD_TYPE=Release -DVERBGW_TESTS=OFF >/dev/null
	@cmake --build $(DEVICE_BUILD) -j $(JOBS) --target verbgw shelfctl >$(DEVICE_BUILD)/build.log 2>&1 || \
		{ cat $(DEVICE_BUILD)/build.log; exit 1; }
	@rm -rf $(DEVICE_BUILD)/package
	@scripts/package $(DEVICE_BUILD) armhf $(DEVICE_BUILD)/package >/dev/null
	@scripts/device image $(DEVICE_BUILD)/package/verbgw_*_armhf.deb $(DEVICE_BUILD)/tools/shelfsim/shelfctl >/dev/null

# The Debian packages of the product for the host (amd64) and the target
# (armhf), in build/package/.
package: build device-image
	@rm -rf $(BUILD)/package
	@scripts/package $(BUILD) $$(dpkg --print-architecture) $(BUILD)/package
	@scripts/package $(DEVICE_BUILD) armhf $(BUILD)/package

# The browser security, operator and load suites against the booted device.
device-test: bootstrap build device-image
	@cd $(BUILD) && ctest -L device --output-on-failure

# The libFuzzer harnesses, built by clang with AddressSanitizer and
# UndefinedBehaviorSanitizer (build-fuzz/fuzz/).
fuzz-build:
	@CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
		-DVERBGW_FUZZ=ON -DVERBGW_TESTS=OFF >/dev/null
	@cmake --build $(FUZZ_BUILD) -j $(JOBS)

# Each harness for FUZZ_SECONDS on its corpus under build-fuzz/corpus/, seeded
# from fuzz/corpus/; a finding stops the run and is kept in build-fuzz/artifacts/.
fuzz: bootstrap fuzz-build
	@mkdir -p $(FUZZ_BUILD)/artifacts
	@for h in $(FUZZ_HARNESSES); do \
		mkdir -p $(FUZZ_BUILD)/corpus/$$h; \
		echo "fuzz: $$h for $(FUZZ_SECONDS) s (log: $(FUZZ_BUILD)/$$h.log)"; \
		if ! $(FUZZ_BUILD)/fuzz/$$h -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1 \
			-dict=$(FUZZ_BUILD)/fuzz/form_fields.dict -artifact_prefix=$(FUZZ_BUILD)/artifacts/$$h- \
			$(FUZZ_BUILD)/corpus/$$h fuzz/corpus/$$h >$(FUZZ_BUILD)/$$h.log 2>&1; then \
			tail -n 60 $(FUZZ_BUILD)/$$h.log; echo "fuzz: $$h found a fault"; exit 1; \
		fi; \
		grep -E '^(Done|stat::(number_of_executed_units|average_exec_per_sec|new_units_added|peak_rss_mb))' \
			$(FUZZ_BUILD)/$$h.log; \
		grep -E '^#[0-9]+' $(FUZZ_BUILD)/$$h.log | tail -n 1; \
	done

# Every suite, each to its end even when an earlier one failed: the whole
# suite under AddressSanitizer and UndefinedBehaviorSanitizer (any report
# fails it), each fuzz harness briefly from its committed seeds, the whole
# suite as built, and the gateway built for the target under emulation. A
# summary per suite, then one closing line of all their figures.
test: bootstrap
	@JOBS=$(JOBS) scripts/test $(ASAN_BUILD) $(FUZZ_BUILD) $(BUILD) $(ARM_BUILD)

# The end-to-end suite with every gateway run under valgrind memcheck: no
# errors, nothing definitely or indirectly lost.
VALGRIND := valgrind -q --error-exitcode=99 --leak-check=full \
	--errors-for-leak-kinds=definite,indirect --show-leak-kinds=definite,indirect
memcheck: bootstrap build
	@VERBGW_WRAPPER="$(VALGRIND)" $(BUILD)/tests/e2e_tests --gtest_brief=1

# Wall time, memory and size of one request against the floor and the
# classic designs; then requests per second through lighttpd.
bench: bootstrap build arm device-image
	@ARM_BUILD=$(ARM_BUILD) bench/run $(BUILD)
	@echo
	@bench/device $(BUILD)/bench/device

# Bounded load through lighttpd and the simulator (loopback only).
loadtest: bootstrap build
	@node tests/load/loadtest.mjs

# How many one-change faults in src/ the unit and end-to-end tests catch
# (MUTANTS of them, 300 by default; SEED picks which; WORKERS side by side,
# each in its own copy of the checkout). MATRIX=file also records which
# cases each mutant fails. Not part of make test.
MUTANTS ?= 300
SEED ?= 1
WORKERS ?= 2
mutation: bootstrap
	@tools/mutation/mutate.py --sample $(MUTANTS) --seed $(SEED) --workers $(WORKERS) $(if $(MATRIX),--matrix $(MATRIX)) $(if $(RESUME),--resume $(RESUME))

# The two commands on a fresh Debian root (needs root, several GiB and
# many minutes; by hand only).
fresh-check:
	@scripts/fresh-check

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(ARM_BUILD) $(DEVICE_BUILD) $(FUZZ_BUILD) build-fresh build-mutation
