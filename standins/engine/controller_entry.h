#pragma once

#include <windows.h>

#include <unknwn.h>

namespace beacon::standin {

/// Class of the controller, BeaconController.Application.
inline constexpr CLSID kControllerClass{0x05F44787, 0xD470, 0x4D95, {0xBE, 0x1E, 0xC7, 0x10, 0xC4, 0xBF, 0xEC, 0xB0}};

/// Whether any process has a controller in the running object table.
bool IsControllerRunning();

/// The controller's entry in the running object table; the destructor revokes it.
class RunningController {
public:
    RunningController() = default;
    RunningController(const RunningController&) = delete;
    RunningController& operator=(const RunningController&) = delete;

    ~RunningController() { Leave(); }

    HRESULT Enter(IUnknown* controller);
    void Leave() noexcept;

private:
    DWORD cookie_ = 0;
};

}  // namespace beacon::standin
