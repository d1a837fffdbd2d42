# Two commands do everything from nothing: `make run` and `make test`.

SHELL := /bin/bash
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 120
CMAKE_BUILD = cmake --build build --parallel $(JOBS)

.PHONY: help run test package test-cluster test-windows soak build bench fuzz lint format docs reference clean asan tsan valgrind coverage reliability

help:  ## list the targets
	@awk -F':.*## ' '/^[a-z-]+:.*## / { printf "  make %-12s %s\n", $$1, $$2 }' $(MAKEFILE_LIST)

run: build  ## set everything up, build, and watch a leave request run on an embedded database
	tools/demo build/bin/talmflow

build:  ## the optimised build in build/, programs in build/bin/
	tools/setup build
	cmake --preset release -DTALM_FLOW_TESTS=OFF -DTALM_FLOW_BENCHMARKS=OFF
	$(CMAKE_BUILD)

test:  ## set everything up, build, and pass all checks and tests
	tools/setup test
	cmake --preset release -DTALM_FLOW_TESTS=ON -DTALM_FLOW_BENCHMARKS=ON
	$(CMAKE_BUILD)
	ctest --test-dir build --output-on-failure --parallel $(JOBS)
	cat build/package/*_sizes.txt
	tools/fuzz --total 60 --seed 1 --jobs $(JOBS)
	tools/lint build

soak:  ## the tests of hosts that work at the same time and are killed, at their full size (see docs/databases.md)
	tools/setup test
	cmake --preset release -DTALM_FLOW_TESTS=ON -DTALM_FLOW_BENCHMARKS=OFF
	$(CMAKE_BUILD)
	TALM_FLOW_SOAK=1 ctest --test-dir build --output-on-failure --tests-regex '^concurrency'

package: build  ## Debian packages of the libraries and the program, in build/packages
	tools/setup package
	cpack --config build/CPackConfig.cmake -G DEB -B build/packages

bench:  ## build and run the benchmarks
	tools/setup test
	cmake --preset release -DTALM_FLOW_TESTS=OFF -DTALM_FLOW_BENCHMARKS=ON
	$(CMAKE_BUILD)
	tools/bench build/bin

fuzz:  ## fuzz every parser, each for FUZZ_SECONDS (default 120)
	tools/setup test
	tools/fuzz --seconds $(FUZZ_SECONDS) --jobs $(JOBS)

lint:  ## formatting, static analysis, folder dependencies (needs a build with tests)
	tools/lint build

docs: build  ## write the documents that the program generates
	mkdir -p docs
	build/bin/talmflow commands --markdown > docs/commands.md

reference:  ## write the reference of all operations to build/reference
	tools/setup test
	tools/reference build/reference

format:  ## format all sources
	git ls-files -co --exclude-standard '*.cpp' '*.h' | xargs clang-format -i

test-cluster:  ## hosts on a three-node Galera cluster, one node of which dies and comes back
	tools/setup cluster
	cmake --preset release -DTALM_FLOW_TESTS=ON -DTALM_FLOW_BENCHMARKS=OFF
	$(CMAKE_BUILD) --target talm_flow_cluster_tests
	tools/cluster start build/cluster
	trap 'tools/cluster stop build/cluster' EXIT; \
	  TALM_FLOW_CLUSTER=build/cluster timeout 600 build/bin/talm_flow_cluster_tests

asan:  ## the tests under address and undefined-behaviour sanitizers
	tools/setup test
	cmake --preset asan && cmake --build --preset asan --parallel $(JOBS)
	ctest --preset asan --parallel $(JOBS)

tsan:  ## the tests under thread sanitizer
	tools/setup test
	cmake --preset tsan && cmake --build --preset tsan --parallel $(JOBS)
	ctest --preset tsan --parallel $(JOBS)

valgrind:  ## the program over the demonstration and every example flow, under valgrind
	tools/setup valgrind
	cmake --preset release && cmake --build --preset release --target talmflow --parallel $(JOBS)
	tools/valgrind build/bin/talmflow

coverage:  ## which lines and branches of the library the tests reach
	tools/setup test
	tools/setup coverage
	tools/coverage --jobs $(JOBS)

reliability:  ## measure all that docs/reliability.md tells, and write it anew (some hours)
	tools/setup test
	tools/setup coverage
	tools/setup valgrind
	tools/reliability --jobs $(JOBS)

test-windows:  ## build the library for Windows and drive it under Wine; what that tells is printed
	tools/setup windows
	cmake --preset windows
	cmake --build --preset windows --parallel $(JOBS)
	tools/test_windows build/windows/bin/talm_flow.dll

clean:  ## remove everything that was built
	rm -rf build
