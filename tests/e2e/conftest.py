import pytest

import adapter
import beacon_harness


@pytest.fixture
def machine(tmp_path):
    return beacon_harness.Machine(tmp_path)


@pytest.fixture
def _programs(request):
    started = []
    yield started
    for program in reversed(started):
        # A killed server of the toolbar stays in Wine's table of classes and would be found by the next test.
        if isinstance(program, beacon_harness.Engine) and program.serves_toolbar and program.is_running:
            try:
                program.quit(3)
            except (AssertionError, OSError):
                pass
        program.kill()
    # Shown by pytest with a failed test only.
    for program in started:
        print(f"---- {program.name} said:")
        print("\n".join(program.lines))


def _starter(programs, kind):
    def start(**options):
        program = kind.__new__(kind)
        programs.append(program)  # before its constructor: one that never becomes ready is ended and shown, too
        program.__init__(**options)
        return program

    return start


@pytest.fixture
def engine(machine, _programs):
    """Starts stand-in engines: engine(option=value...)."""
    return _starter(_programs, beacon_harness.Engine)


@pytest.fixture
def outlook(request, machine, _programs):
    """Starts stand-in Outlooks: outlook(option=value...). Those that a test leaves running are checked in the end."""
    failed = request.session.testsfailed
    yield _starter(_programs, beacon_harness.Outlook)
    for program in _programs:
        if isinstance(program, beacon_harness.Outlook) and program.is_running and request.session.testsfailed == failed:
            adapter.check_nothing_left(program)
