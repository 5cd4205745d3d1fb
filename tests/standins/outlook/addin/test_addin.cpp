// An add-in for the tests of the stand-in Outlook. It tells on standard output what it is told, and does wrong what the
// environment variable TEST_ADDIN asks for (words with a blank on each side).
#include <windows.h>

#include <cstdio>
#include <list>
#include <string>

#include "add_in_designer.h"
#include "com/dual.h"
#include "com/event_sink.h"
#include "com/module.h"
#include "com/object.h"
#include "com/served_class.h"
#include "standins/outlook/object_model/events.h"

namespace beacon {
namespace {

namespace events = standin::events;

constexpr char kOutlookWindow[] = "rctrl_renwnd32";

HRESULT Tell(const std::string& text) {
    std::printf("addin: %s\n", text.c_str());
    std::fflush(stdout);
    return S_OK;
}

bool Asked(const std::string& word) {
    char text[256] = "";
    GetEnvironmentVariableA("TEST_ADDIN", text, sizeof text);
    return std::string(text).find(" " + word + " ") != std::string::npos;
}

void LeakIfAsked(const char* word, IUnknown* object) {
    if (Asked(word)) object->AddRef();
}

/// Whether Outlook has a window with this caption; null stands for any.
std::string WindowNamed(const char* caption) {
    return FindWindowA(kOutlookWindow, caption) != nullptr ? ", window" : ", no window";
}

LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam) { return CallNextHookEx(nullptr, code, wParam, lParam); }

void CALLBACK OpenBox(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    MessageBoxA(nullptr, "Stay!", "Test add-in", MB_OK);
    Tell("box closed");
}

class Inspection {
public:
    explicit Inspection(const com::Object& inspector) {
        Tell("inspector new" + WindowNamed(com::ToAnsi(inspector.GetText(L"Caption")).c_str()));
        inspector_.Set(inspector, {events::kInspector10, events::kInspector},
                       [this](DISPID member, const com::EventArguments&) { Happened(member); });
        item_.Set(inspector.GetObject(L"CurrentItem"), {events::kItem10, events::kItem},
                  [](DISPID member, const com::EventArguments& arguments) {
                      Tell(member == events::kItemClose ? "inspector item Close" : "inspector item BeforeDelete");
                      if (Asked("cancel")) arguments.SetBool(arguments.Count() - 1, true);
                  });
        LeakIfAsked("leak-item", item_.Get().Get());
    }

private:
    void Happened(DISPID member) {
        if (member == events::kActivate) Tell("inspector Activate");
        if (member == events::kDeactivate) Tell("inspector Deactivate");
        if (member != events::kWindowClose) return;
        Tell("inspector Close");
        LeakIfAsked("leak-inspector", inspector_.Get().Get());
        item_.Release();  // from inside the event, as listeners do
        inspector_.Release();
    }

    com::WatchedObject inspector_;
    com::WatchedObject item_;
};

class TestAddin final : public com::Dual<IDTExtensibility2, 1> {
public:
    STDMETHODIMP OnConnection(IDispatch* application, long mode, IDispatch* instance, SAFEARRAY** custom) override {
        return com::Method([&] {
            Tell("OnConnection " + std::to_string(mode) + (custom != nullptr && *custom != nullptr ? " custom" : ""));
            LeakIfAsked("leak-instance", instance);
            application_.Set(com::Object(application), {events::kApplication},
                             [this](DISPID member, const com::EventArguments&) {
                                 if (member == events::kStartup) Startup();
                                 if (member == events::kQuit) Quit();
                             });
            hook_ = SetWindowsHookExA(WH_GETMESSAGE, Hook, nullptr, GetCurrentThreadId());
        });
    }

    STDMETHODIMP OnDisconnection(long mode, SAFEARRAY**) override {
        if (!Asked("keep-hook")) UnhookWindowsHookEx(hook_);
        return Tell("OnDisconnection " + std::to_string(mode));
    }

    STDMETHODIMP OnAddInsUpdate(SAFEARRAY**) override { return S_OK; }

    STDMETHODIMP OnStartupComplete(SAFEARRAY**) override { return Tell("OnStartupComplete"); }

    STDMETHODIMP OnBeginShutdown(SAFEARRAY**) override { return Tell("OnBeginShutdown"); }

private:
    void Startup() {
        Tell("Startup");
        inspectors_.Set(
            application_.Get().GetObject(L"Inspectors"), {events::kInspectors},
            [this](DISPID, const com::EventArguments& arguments) { inspections_.emplace_back(arguments.ObjectAt(0)); });
        explorer_.Set(application_.Get().CallObject(L"ActiveExplorer"), {events::kExplorer},
                      [this](DISPID member, const com::EventArguments&) { Happened(member); });
        IDispatch* const explorer = explorer_.Get().Get();
        SetPropA(FindWindowA(kOutlookWindow, nullptr), "PROP_OLK", explorer);
        LeakIfAsked("leak-explorer", explorer);
        LeakIfAsked("leak-selection", explorer_.Get().GetObject(L"Selection").Get());
        if (Asked("box")) SetTimer(nullptr, 0, 10, OpenBox);
        if (!Asked("keep-window")) return;
        const WNDCLASSA description{0,       DefWindowProcA, 0,       0,       com::ModuleInstance(),
                                    nullptr, nullptr,        nullptr, nullptr, "TestAddinWindow"};
        RegisterClassA(&description);
        CreateWindowA("TestAddinWindow", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, com::ModuleInstance(), nullptr);
    }

    void Happened(DISPID member) {
        if (member == events::kSelectionChange)
            Tell("SelectionChange " + std::to_string(explorer_.Get().GetObject(L"Selection").GetLong(L"Count")));
        if (member != events::kWindowClose) return;
        Tell("explorer Close");
        if (!Asked("keep-property")) RemovePropA(FindWindowA(kOutlookWindow, nullptr), "PROP_OLK");
        explorer_.Release();
    }

    void Quit() {
        Tell("Quit" + WindowNamed(nullptr));
        inspections_.clear();
        inspectors_.Release();
        explorer_.Release();
        application_.Release();
    }

    com::WatchedObject application_;
    com::WatchedObject inspectors_;
    com::WatchedObject explorer_;
    std::list<Inspection> inspections_;
    HHOOK hook_ = nullptr;
};

}  // namespace
}  // namespace beacon

const beacon::com::ServedClass beacon::com::kServedClass = {
    {0x5D0B7A4E, 0x1C0F, 0x4B57, {0x9B, 0x0D, 0x1F, 0x6C, 0x3A, 0x1F, 0x5E, 0x21}},
    [] { return ComPtr<IUnknown>(new TestAddin); },
    [] {},
    [] {},
    false,
};
