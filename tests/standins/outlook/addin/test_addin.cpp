// An add-in for the tests of the stand-in Outlook. It tells on standard output everything that it is told, and does
// wrong what the environment variable TEST_ADDIN asks for (words separated by blanks).
#include <windows.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "add_in_designer.h"
#include "com/class_factory.h"
#include "com/dual.h"
#include "com/event_sink.h"
#include "com/module.h"
#include "com/object.h"
#include "standins/outlook/events.h"

namespace beacon {
namespace {

namespace events = standin::events;

// {5D0B7A4E-1C0F-4B57-9B0D-1F6C3A1F5E21}
constexpr CLSID kClass = {0x5D0B7A4E, 0x1C0F, 0x4B57, {0x9B, 0x0D, 0x1F, 0x6C, 0x3A, 0x1F, 0x5E, 0x21}};

void Tell(const std::string& text) {
    const std::string line = "addin: " + text + "\n";
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

bool Asked(const char* word) {
    char text[256] = " ";
    const DWORD length = GetEnvironmentVariableA("TEST_ADDIN", text + 1, 250);
    text[length + 1] = ' ';
    text[length + 2] = '\0';
    return std::string(text).find(" " + std::string(word) + " ") != std::string::npos;
}

void Leak(IUnknown* object) {
    if (object != nullptr) object->AddRef();
}

std::string WindowOf(const com::Object& window) {
    const std::string caption = com::ToAnsi(window.GetText(L"Caption"));
    return FindWindowA("rctrl_renwnd32", caption.c_str()) != nullptr ? "window" : "no window";
}

LRESULT CALLBACK TellMessage(int code, WPARAM wParam, LPARAM lParam) {
    const auto* message = reinterpret_cast<const MSG*>(lParam);
    switch (message->message) {
        case WM_KEYDOWN: Tell("hook key"); break;
        case WM_LBUTTONDOWN: Tell("hook button"); break;
        case WM_MOUSEWHEEL: Tell("hook wheel"); break;
        default: break;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

/// Follows one inspector and its item.
class Inspection {
public:
    explicit Inspection(com::Object inspector) : inspector_(std::move(inspector)) {
        Tell("NewInspector, " + WindowOf(inspector_));
        const auto told = [this](const char* generation) {
            return [this, generation](DISPID member, const com::EventArguments&) { Inspector(generation, member); };
        };
        const bool old = old_.Advise(inspector_.Get(), events::kInspector, told("old"));
        const bool recent = new_.Advise(inspector_.Get(), events::kInspector10, told("new"));
        Tell(std::string("inspector events") + (old ? " old" : "") + (recent ? " new" : ""));
        item_ = inspector_.GetObject(L"CurrentItem");
        const auto handler = [](const char* generation) {
            return [generation](DISPID member, const com::EventArguments& arguments) {
                Tell(std::string("item ") + generation + (member == events::kItemClose ? " Close" : " BeforeDelete"));
                if (Asked("cancel")) arguments.SetBool(arguments.Count() - 1, true);
            };
        };
        const bool oldItem = oldItem_.Advise(item_.Get(), events::kItem, handler("old"));
        const bool newItem = newItem_.Advise(item_.Get(), events::kItem10, handler("new"));
        Tell(std::string("item events") + (oldItem ? " old" : "") + (newItem ? " new" : ""));
        if (Asked("leak-item")) Leak(item_.Get());
    }

private:
    void Inspector(const char* generation, DISPID member) {
        const std::string name = std::string("inspector ") + generation;
        if (member == events::kActivate) Tell(name + " Activate, " + WindowOf(inspector_));
        if (member == events::kDeactivate) Tell(name + " Deactivate");
        if (member != events::kWindowClose) return;
        Tell(name + " Close, " + WindowOf(inspector_));
        if (Asked("leak-inspector")) Leak(inspector_.Get());
        old_.Unadvise();  // from inside the event, as listeners do
        new_.Unadvise();
        oldItem_.Unadvise();
        newItem_.Unadvise();
        item_.Reset();
        inspector_.Reset();
    }

    com::Object inspector_;
    com::Object item_;
    com::EventSubscription old_, new_, oldItem_, newItem_;
};

class TestAddin final : public com::Dual<IDTExtensibility2, 1> {
public:
    STDMETHODIMP OnConnection(IDispatch* application, long mode, IDispatch* instance, SAFEARRAY** custom) override {
        return com::Method([&] {
            Tell("OnConnection " + std::to_string(mode) + (custom != nullptr && *custom != nullptr ? " custom" : ""));
            application_ = com::Object(application);
            Tell("version " + com::ToAnsi(application_.GetText(L"Version")));
            Tell("instance " + com::ToAnsi(com::Object(instance).GetText(L"ProgId")));
            if (Asked("leak-instance")) Leak(instance);
            quit_.Advise(application, events::kApplication, [this](DISPID member, const com::EventArguments&) {
                if (member == events::kStartup) Startup();
                if (member == events::kQuit) Quit();
            });
            hook_ = SetWindowsHookExA(WH_GETMESSAGE, TellMessage, nullptr, GetCurrentThreadId());
            if (mode != 1) Startup();
        });
    }

    STDMETHODIMP OnDisconnection(long mode, SAFEARRAY**) override {
        return com::Method([&] {
            Tell("OnDisconnection " + std::to_string(mode));
            if (!Asked("keep-hook")) UnhookWindowsHookEx(hook_);
            Drop();
        });
    }

    STDMETHODIMP OnAddInsUpdate(SAFEARRAY**) override { return S_OK; }

    STDMETHODIMP OnStartupComplete(SAFEARRAY**) override {
        Tell("OnStartupComplete");
        return S_OK;
    }

    STDMETHODIMP OnBeginShutdown(SAFEARRAY**) override {
        Tell("OnBeginShutdown");
        return S_OK;
    }

private:
    void Startup() {
        com::Object explorers = application_.GetObject(L"Explorers");
        Tell("Startup explorers=" + std::to_string(explorers.GetLong(L"Count")));
        newInspector_.Advise(application_.GetObject(L"Inspectors").Get(), events::kInspectors,
                             [this](DISPID, const com::EventArguments& arguments) {
                                 inspections_.push_back(std::make_unique<Inspection>(arguments.ObjectAt(0)));
                             });
        newExplorer_.Advise(explorers.Get(), events::kExplorers, [](DISPID, const com::EventArguments& arguments) {
            Tell("NewExplorer " + com::ToAnsi(arguments.ObjectAt(0).GetText(L"Caption")));
        });
        explorer_ = application_.CallObject(L"ActiveExplorer");
        if (!explorer_) return Tell("no explorer");
        explorerEvents_.Advise(explorer_.Get(), events::kExplorer,
                               [this](DISPID member, const com::EventArguments&) { Explorer(member); });
        const HWND window = FindWindowA("rctrl_renwnd32", nullptr);
        SetPropA(window, "PROP_OLK", explorer_.Get());
        if (Asked("leak-explorer")) Leak(explorer_.Get());
        if (Asked("leak-twice")) Leak(explorer_.Get());
        if (Asked("leak-point")) {
            com::ComPtr<IConnectionPointContainer> container;
            com::ComPtr<IConnectionPoint> point;
            explorer_.Get()->QueryInterface(IID_PPV_ARGS(&container));
            container->FindConnectionPoint(events::kExplorer, &point);
            Leak(point.Get());
        }
        if (Asked("leak-selection")) Leak(explorer_.GetObject(L"Selection").Get());
        if (Asked("keep-window")) MakeWindow();
    }

    void Explorer(DISPID member) {
        const com::Object selection = explorer_.GetObject(L"Selection");
        switch (member) {
            case events::kSelectionChange:
                Tell("SelectionChange " + std::to_string(selection.GetLong(L"Count")));
                break;
            case events::kWindowClose:
                Tell("explorer Close");
                if (!Asked("keep-property")) RemovePropA(FindWindowA("rctrl_renwnd32", nullptr), "PROP_OLK");
                explorerEvents_.Unadvise();
                explorer_.Reset();
                break;
            default: break;
        }
    }

    void Quit() {
        Tell(std::string("Quit, ") + (FindWindowA("rctrl_renwnd32", nullptr) != nullptr ? "window" : "no window"));
        if (!Asked("hold")) Drop();
    }

    void Drop() {
        inspections_.clear();
        newInspector_.Unadvise();
        newExplorer_.Unadvise();
        explorerEvents_.Unadvise();
        explorer_.Reset();
        application_.Reset();
        quit_.Unadvise();
    }

    static void MakeWindow() {
        WNDCLASSA description{};
        description.lpfnWndProc = DefWindowProcA;
        description.hInstance = com::ModuleInstance();
        description.lpszClassName = "TestAddinWindow";
        RegisterClassA(&description);
        CreateWindowA("TestAddinWindow", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, com::ModuleInstance(), nullptr);
    }

    com::Object application_;
    com::Object explorer_;
    com::EventSubscription quit_, newInspector_, newExplorer_, explorerEvents_;
    std::vector<std::unique_ptr<Inspection>> inspections_;
    HHOOK hook_ = nullptr;
};

}  // namespace
}  // namespace beacon

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) beacon::com::SetModuleInstance(instance);
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID id, REFIID interfaceId, void** object) {
    if (id != beacon::kClass) return CLASS_E_CLASSNOTAVAILABLE;
    return beacon::com::MakeClassFactory([] { return beacon::com::ComPtr<IUnknown>(new beacon::TestAddin); })
        ->QueryInterface(interfaceId, object);
}

STDAPI DllCanUnloadNow() { return beacon::com::LiveThings() == 0 ? S_OK : S_FALSE; }
