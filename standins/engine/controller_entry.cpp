#include "engine/controller_entry.h"

#include <oleauto.h>
#include <wrl/client.h>

#include <utility>

namespace beacon::standin {

bool IsControllerRunning() {
    Microsoft::WRL::ComPtr<IUnknown> found;
    return SUCCEEDED(GetActiveObject(kControllerClass, nullptr, &found)) && found != nullptr;
}

HRESULT RunningController::Enter(IUnknown* controller) {
    Leave();
    return RegisterActiveObject(controller, kControllerClass, ACTIVEOBJECT_STRONG, &cookie_);
}

void RunningController::Leave() noexcept {
    if (const DWORD cookie = std::exchange(cookie_, 0U); cookie != 0) RevokeActiveObject(cookie, nullptr);
}

}  // namespace beacon::standin
