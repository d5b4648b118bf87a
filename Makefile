# The project's targets. Each installs what it needs first (scripts/setup: looks only, when all is there) and builds only
# what changed, so any of them works in a fresh clone.
SHELL := /bin/bash
.SHELLFLAGS := -euo pipefail -c
.DEFAULT_GOAL := build
MAKEFLAGS += --no-print-directory
JOBS ?= $(shell nproc)

# $(call build,PRESET,OPTIONS)
build = cmake --preset $(1) $(2) --log-level=WARNING >/dev/null && cmake --build build/$(1) -j $(JOBS)
# $(call run_tests,PRESET): last in a target, so that its closing lines are ctest's summary.
run_tests = ctest --test-dir build/$(1) --output-on-failure --no-tests=error -j $(JOBS)

.PHONY: help build messages demo examples test test-asan test-tsan test-browser test-dictionaries coverage format check-format lint-page tidy bench bench-scaling bench-sql clean

help:  ## show this list
	@sed -n 's/^\([a-z-]*\):.*## /  make \1|/p' Makefile | column -t -s '|'

build:  ## the release program: build/release/codebook, with codebook.so beside it
	@scripts/setup build
	@$(call build,release,-DCODEBOOK_TESTS=OFF)

messages:  ## bring the catalogs of po/ up to the fixed texts of the sources
	@scripts/setup build
	@scripts/messages

demo: build  ## build, then the codebook of a real survey
	@scripts/demo

examples: build  ## write the codebooks in examples/ anew
	@scripts/examples

test:  ## build for development, run every test
	@scripts/setup build test databases
	@$(call build,dev,)
	@$(call run_tests,dev)

test-asan: export ASAN_OPTIONS := detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1
test-asan: export UBSAN_OPTIONS := print_stacktrace=1
test-asan:  ## the tests under the address and undefined-behaviour sanitizers
	@scripts/setup build test databases
	@$(call build,asan,)
	@$(call run_tests,asan)

test-tsan:  ## the tests under the thread sanitizer
	@scripts/setup build test databases
	@$(call build,tsan,)
	@$(call run_tests,tsan)

test-dictionaries:  ## 1,000 random dictionaries written, validated and read again
	@scripts/setup build test
	@$(call build,dev,)
	@CODEBOOK_RANDOM_DESCRIPTORS=1000 ctest --test-dir build/dev --output-on-failure --no-tests=error -R '^dictionaries[.]'

test-browser:  ## the HTML report in Chromium; pages and pictures are kept in build/browser (FILES="tests/browser/page.test.mjs")
	@scripts/setup build test browser
	@$(call build,dev,)
	@scripts/browser test $(CURDIR)/build/dev/codebook $(FILES)

coverage:  ## branch coverage of codebook/; fails under 95 %
	@scripts/setup build test databases coverage
	@$(call build,coverage,)
	@find build/coverage -name '*.gcda' -delete
	@$(call run_tests,coverage)
	@scripts/coverage

format:  ## lay out every source as .clang-format says
	@scripts/setup style
	@scripts/format

check-format:  ## say which sources are not laid out so
	@scripts/setup style
	@scripts/format --check

lint-page:  ## the linter over the script of the HTML report and its tests
	@scripts/setup browser
	@scripts/browser lint

tidy:  ## clang-tidy over what differs from origin/main (FILES="a.cpp b.cpp", or ALL=1 for every source)
	@scripts/setup build test style
	@cmake --preset dev --log-level=WARNING >/dev/null
	@scripts/tidy $(if $(ALL),--all,$(FILES))

bench:  ## time the program beside its rivals: build/bench/table.md (ARGS="--shapes W --runs 9", --help for more)
	@scripts/setup build bench
	@$(call build,release,-DCODEBOOK_TESTS=OFF -DCODEBOOK_BENCH=ON)
	@scripts/bench $(ARGS)

bench-scaling:  ## how cost and memory grow with the data: build/bench/scaling.md
	@scripts/setup build bench
	@$(call build,release,-DCODEBOOK_TESTS=OFF -DCODEBOOK_BENCH=ON)
	@scripts/bench --scaling $(ARGS)

bench-sql:  ## counting in PostgreSQL, on one server and on three, beside fetching its rows (ARGS="--rows 200000")
	@scripts/setup build bench databases
	@$(call build,release,-DCODEBOOK_TESTS=OFF -DCODEBOOK_BENCH=ON)
	@scripts/bench-sql $(ARGS)

clean:  ## remove everything that was built
	rm -rf build
