"""Fixtures for all tests that run the real programs."""

import adapter
import beacon_harness
import pytest


@pytest.fixture
def machine(tmp_path):
    return beacon_harness.Machine(tmp_path)


@pytest.fixture
def _programs(request):
    started = []
    yield started
    for program in reversed(started):
        # Wine keeps the class of a killed toolbar server in its table, where the next test would find it.
        if isinstance(program, beacon_harness.Engine) and program.serves_toolbar and program.is_running:
            try:
                program.quit(3)
            except (AssertionError, OSError):
                pass
        program.kill()
    # pytest shows this only for a failed test.
    for program in started:
        print(f"---- output of {program.name}:")
        print("\n".join(program.lines))


def _starter(programs, kind):
    def start(**options):
        program = kind.__new__(kind)
        programs.append(program)  # before the constructor, so that a program that hangs in it is killed and shown
        program.__init__(**options)
        return program

    return start


@pytest.fixture
def engine(machine, _programs):
    """Starts stand-in engines: engine(option=value...)."""
    return _starter(_programs, beacon_harness.Engine)


@pytest.fixture
def outlook(request, machine, _programs):
    """Starts stand-in Outlooks: outlook(option=value...). Checks at the end what is left in those still running."""
    failed = request.session.testsfailed
    yield _starter(_programs, beacon_harness.Outlook)
    for program in _programs:
        if isinstance(program, beacon_harness.Outlook) and program.is_running and request.session.testsfailed == failed:
            adapter.check_nothing_left(program)
