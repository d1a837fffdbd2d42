# Two commands do everything from nothing: `make run` and `make test`.

SHELL := /bin/bash
JOBS ?= $(shell nproc)
CMAKE_BUILD = cmake --build build --parallel $(JOBS)

.PHONY: help run test build bench lint format docs clean asan tsan

help:  ## list the targets
	@awk -F':.*## ' '/^[a-z-]+:.*## / { printf "  make %-8s %s\n", $$1, $$2 }' $(MAKEFILE_LIST)

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
	tools/lint build

bench:  ## build and run the benchmarks
	tools/setup test
	cmake --preset release -DTALM_FLOW_TESTS=OFF -DTALM_FLOW_BENCHMARKS=ON
	$(CMAKE_BUILD)
	tools/bench build/bin

lint:  ## formatting, static analysis, folder dependencies (needs a build with tests)
	tools/lint build

docs: build  ## write the documents that the program generates
	mkdir -p docs
	build/bin/talmflow commands --markdown > docs/commands.md

format:  ## format all sources
	git ls-files -co --exclude-standard '*.cpp' '*.h' | xargs clang-format -i

asan:  ## the tests under address and undefined-behaviour sanitizers
	tools/setup test
	cmake --preset asan && cmake --build --preset asan --parallel $(JOBS)
	ctest --preset asan --parallel $(JOBS)

tsan:  ## the tests under thread sanitizer
	tools/setup test
	cmake --preset tsan && cmake --build --preset tsan --parallel $(JOBS)
	ctest --preset tsan --parallel $(JOBS)

clean:  ## remove everything that was built
	rm -rf build
