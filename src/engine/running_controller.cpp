#include "engine/running_controller.h"

#include <beacon_util.h>

#include <utility>

namespace beacon {

com::Object RunningController() noexcept {
    CLSID id;
    if (FAILED(CLSIDFromProgID(L"BeaconController.Application", &id))) id = __uuidof(BeaconController);
    com::ComPtr<IUnknown> running;
    com::ComPtr<IDispatch> controller;
    if (FAILED(GetActiveObject(id, nullptr, &running)) || FAILED(running.As(&controller))) return {};
    return com::Object(std::move(controller));
}

}  // namespace beacon
