"""Fixtures for all tests that run the real programs."""

import adapter
import beacon_harness
import pytest


@pytest.fixture
def machine(tmp_path):
    return beacon_harness.Machine(tmp_path)


@pytest.fixture(autouse=True)
def _programs(request):
    """Checks at the end what is left in Outlooks that still run; then kills all programs."""
    failed = request.session.testsfailed
    started = beacon_harness.Program.started
    started.clear()
    yield started
    running = [program for program in started if program.is_running]
    try:
        for program in running if request.session.testsfailed == failed else []:
            if isinstance(program, beacon_harness.Outlook):
                adapter.check_nothing_left(program)
        # Wine keeps the class of a killed toolbar server in its table, where the next test would find it.
        for program in running:
            if isinstance(program, beacon_harness.Engine) and program.serves_toolbar:
                program.quit(3)
    finally:
        for program in reversed(started):
            program.kill()
        # pytest shows this only for a failed test.
        for program in started:
            print(f"---- output of {program.name}:", *program.lines, sep="\n")


@pytest.fixture
def engine(machine):
    """Starts stand-in engines: engine(option=value...)."""
    return beacon_harness.Engine


@pytest.fixture
def outlook(machine):
    """Starts stand-in Outlooks: outlook(option=value...)."""
    return beacon_harness.Outlook
