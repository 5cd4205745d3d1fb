#include "check/controller.h"

#include <objbase.h>

#include <memory>

#include "engine/running_controller.h"

namespace beacon::check {
namespace {

ControllerState Ask() noexcept {
    const com::Object controller = RunningController();
    if (!controller) return ControllerState::Absent;
    for (const wchar_t* member : {L"GetMessageInterface", L"GetEngineInterface"}) {
        auto* name = const_cast<LPOLESTR>(member);
        DISPID id = DISPID_UNKNOWN;
        if (FAILED(controller.Get()->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_SYSTEM_DEFAULT, &id)))
            return ControllerState::Fails;
    }
    return ControllerState::Answers;
}

DWORD WINAPI AskOnThread(void* answer) {
    if (SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        *static_cast<ControllerState*>(answer) = Ask();
        CoUninitialize();
    }
    return 0;
}

}  // namespace

ControllerState AskController(DWORD patience) {
    auto answer = std::make_unique<ControllerState>(ControllerState::Fails);
    const HANDLE thread = CreateThread(nullptr, 0, AskOnThread, answer.get(), 0, nullptr);
    if (thread == nullptr) return ControllerState::Fails;
    const bool ended = WaitForSingleObject(thread, patience) == WAIT_OBJECT_0;
    CloseHandle(thread);
    if (ended) return *answer;
    static_cast<void>(answer.release());  // the thread may still write it
    return ControllerState::Hangs;
}

}  // namespace beacon::check
