#include "check/controller.h"

#include <objbase.h>

#include <atomic>
#include <memory>

#include "com/handle.h"
#include "engine/running_controller.h"

namespace beacon::check {
namespace {

struct Question {
    std::atomic<bool> looked = false;  // in the running object table
    ControllerState answer = ControllerState::Fails;
};

ControllerState Ask(Question& question) noexcept {
    const com::Object controller = RunningController();
    question.looked = true;
    if (!controller) return ControllerState::Absent;
    for (const wchar_t* member : {L"GetMessageInterface", L"GetEngineInterface"}) {
        auto* name = const_cast<LPOLESTR>(member);
        DISPID id = DISPID_UNKNOWN;
        if (FAILED(controller.Get()->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_SYSTEM_DEFAULT, &id)))
            return ControllerState::Fails;
    }
    return ControllerState::Answers;
}

DWORD WINAPI AskOnThread(void* parameter) {
    if (SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        auto& question = *static_cast<Question*>(parameter);
        question.answer = Ask(question);
        CoUninitialize();
    }
    return 0;
}

}  // namespace

ControllerState AskController(DWORD timeout) {
    auto question = std::make_unique<Question>();
    const com::UniqueHandle thread(CreateThread(nullptr, 0, AskOnThread, question.get(), 0, nullptr));
    if (!thread) return ControllerState::Fails;
    bool ended = WaitForSingleObject(thread.get(), timeout) == WAIT_OBJECT_0;
    // The first access to the table may have to wait until its service has started.
    if (!ended && !question->looked) ended = WaitForSingleObject(thread.get(), timeout) == WAIT_OBJECT_0;
    if (ended) return question->answer;
    static_cast<void>(question.release());  // the thread may still write to it
    return ControllerState::Hangs;
}

}  // namespace beacon::check
