// The smallest engine: prints what the Beacon Outlook Adapter sends, and passes on what a script tells it (watch.vbs).
// It needs only contracts/beacon_util.idl, and follows docs/protocol.md.
//
// MinGW, in a folder with beacon_util.h and beacon_util.tlb (docs/protocol.md says how to make them):
//   x86_64-w64-mingw32-g++ -std=c++17 -static smallest_engine.cpp -o smallest_engine.exe -lole32 -loleaut32 -luuid
// Visual Studio, in a folder with beacon_util.idl, in its command prompt:
//   midl /env x64 beacon_util.idl
//   cl /std:c++17 /EHsc smallest_engine.cpp ole32.lib oleaut32.lib advapi32.lib uuid.lib
//
// beacon_util.tlb must be in the folder of the program. As administrator, run smallest_engine /regserver once. To
// remove it, run /unregserver, which leaves the type library registered because other engines need it.
#include <windows.h>

#include <comdef.h>

#include <cstdio>
#include <deque>
#include <map>
#include <string>
#include <type_traits>
#include <utility>

#include "beacon_util.h"

namespace {

constexpr CLSID kController = {0x05F44787, 0xD470, 0x4D95, {0xBE, 0x1E, 0xC7, 0x10, 0xC4, 0xBF, 0xEC, 0xB0}};
constexpr CLSID kForScripts = {0x3A866F10, 0xE807, 0x4CCA, {0x85, 0x31, 0xFD, 0x26, 0x76, 0xDD, 0xCF, 0x35}};
const std::wstring kClassKey = L"Software\\Classes\\CLSID\\{3A866F10-E807-4CCA-8531-FD2676DDCF35}";
const std::wstring kProgIdKey = L"Software\\Classes\\SmallestEngine.Application";

std::deque<std::wstring> g_lines;  // not yet taken by a script; at most the last thousand
bool g_quit = false;

/// Serves calls, which arrive as window messages, for `time` milliseconds or until a line arrives.
void Serve(ULONGLONG time, bool untilLine) {
    MSG message;
    for (const ULONGLONG end = GetTickCount64() + time; GetTickCount64() < end && !(untilLine && !g_lines.empty());) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
}

/// Prints a line in UTF-8: kind, window, and the text with CR, LF and backslash as \r, \n and \\.
HRESULT Show(const wchar_t* kind, long window, BSTR text, VARIANT* result) {
    std::wstring line = kind + (L" " + std::to_wstring(window)) + L" ";
    for (const wchar_t character : std::wstring(text, SysStringLen(text))) {
        if (character == L'\r' || character == L'\n' || character == L'\\') line += L'\\';
        line += character == L'\r' ? L'r' : character == L'\n' ? L'n' : character;
    }
    std::string bytes(3 * line.size() + 1, '\0');
    WideCharToMultiByte(CP_UTF8, 0, line.c_str(), -1, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    std::printf("%s\n", bytes.c_str());
    std::fflush(stdout);
    g_lines.push_back(line);
    if (g_lines.size() > 1000) g_lines.pop_front();
    return VariantInit(result), S_OK;
}

/// Objects live as long as the program, so references are not counted.
template <class Interface>
struct Permanent : Interface {
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool dispatches = std::is_base_of_v<IDispatch, Interface> && id == IID_IDispatch;
        const bool known = dispatches || id == IID_IUnknown || id == __uuidof(Interface);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }

    // clang-format off
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    // For an IDispatch whose members are called through the method table only.
    STDMETHODIMP GetTypeInfoCount(UINT* count) { return *count = 0, S_OK; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) { return E_NOTIMPL; }
};

// clang-format on

/// Receives the messages or the controls of one window.
struct Dispatcher : Permanent<IMessageDispatch> {
    IMessageDispatch* sink = nullptr;  // the adapter, from Connect to Disconnect
    long window = 0;

    STDMETHODIMP Connect(BSTR, IMessageDispatch* peer, long id, VARIANT* out) override {
        if (peer != nullptr) peer->AddRef();
        if (IMessageDispatch* const earlier = std::exchange(sink, peer)) earlier->Release();
        window = id;
        return VariantInit(out), S_OK;
    }

    STDMETHODIMP Disconnect(long, VARIANT* out) override { return Connect(nullptr, nullptr, 0, out); }

    STDMETHODIMP get_id(long* value) override { return *value = window, S_OK; }

    STDMETHODIMP PutControl(BSTR text, IMessageDispatch*, long id, VARIANT* out) override {
        return Show(L"control", id, text, out);
    }

    STDMETHODIMP PutMessage(BSTR text, IMessageDispatch*, long id, VARIANT* out) override {
        return Show(L"message", id, text, out);
    }

    STDMETHODIMP Status(BSTR, IDispatch*, long, VARIANT* out) override { return VariantInit(out), S_OK; }
};

/// Controller, engine object and the object of scripts in one. All call it late-bound.
struct Engine : Permanent<IDispatch> {
    enum : DISPID { kMessages = 1, kEngine, kPutControl, kPutMessage, kTakeLine, kQuit };

    std::map<std::pair<std::wstring, long>, Dispatcher> dispatchers;  // by channel and window

    /// Calls the controller sink of each window; returns how many succeeded.
    long Tell(BSTR text, HRESULT (STDMETHODCALLTYPE IMessageDispatch::*put)(BSTR, IMessageDispatch*, long, VARIANT*)) {
        long told = 0;
        for (auto& [key, dispatcher] : dispatchers) {
            IMessageDispatch* const sink = key.first == L"AppToController" ? dispatcher.sink : nullptr;
            _variant_t ignored;
            if (sink == nullptr) continue;
            sink->AddRef();  // the window may disconnect inside the call
            if (SUCCEEDED((sink->*put)(text, nullptr, key.second, &ignored))) ++told;
            sink->Release();
        }
        return told;
    }

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* members) override {
        const wchar_t* const known[] = {L"GetMessageInterface", L"GetEngineInterface", L"PutControl",
                                        L"PutMessage",          L"TakeLine",           L"Quit"};
        for (*members = kQuit; *members > 0; --*members)
            if (lstrcmpiW(*names, known[*members - 1]) == 0) return S_OK;
        return DISP_E_UNKNOWNNAME;
    }

    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT* out, EXCEPINFO*,
                        UINT*) override {
        const UINT wanted = member <= kEngine ? 2 : member <= kPutMessage ? 1 : 0;
        _variant_t text, id, answer;
        if (given->cArgs != wanted) return DISP_E_BADPARAMCOUNT;
        // Arguments come in reversed order.
        if (wanted > 0 && FAILED(VariantChangeType(&text, &given->rgvarg[wanted - 1], 0, VT_BSTR))) return E_INVALIDARG;
        if (wanted > 1 && FAILED(VariantChangeType(&id, &given->rgvarg[0], 0, VT_I4))) return E_INVALIDARG;
        if (member == kMessages) answer = static_cast<IDispatch*>(&dispatchers[{text.bstrVal, id.lVal}]);
        if (member == kEngine) answer = static_cast<IDispatch*>(this);
        if (member == kPutControl) answer = Tell(text.bstrVal, &IMessageDispatch::PutControl);
        if (member == kPutMessage) answer = Tell(text.bstrVal, &IMessageDispatch::PutMessage);
        if (member == kTakeLine) Serve(100, true);
        if (member == kTakeLine) answer = g_lines.empty() ? L"" : g_lines.front().c_str();
        if (member == kTakeLine && !g_lines.empty()) g_lines.pop_front();
        if (member == kQuit) g_quit = true;
        if (out != nullptr) *out = answer.Detach();
        return S_OK;
    }
} g_engine;

/// A script that creates the class gets the object of the running program.
struct Factory : Permanent<IClassFactory> {
    STDMETHODIMP CreateInstance(IUnknown*, REFIID id, void** out) override { return g_engine.QueryInterface(id, out); }

    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
} g_factory;

bool Set(const std::wstring& key, const std::wstring& text) {
    return RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, text.c_str(),
                           static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

}  // namespace

int main(int count, char** words) {
    const std::string option = count > 1 ? words[1] : "";
    wchar_t buffer[MAX_PATH];
    const std::wstring program(buffer, GetModuleFileNameW(nullptr, buffer, MAX_PATH));
    const std::wstring library = program.substr(0, program.rfind(L'\\') + 1) + L"beacon_util.tlb";
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (option == "/regserver") {
        ITypeLib* loaded = nullptr;
        if (FAILED(LoadTypeLibEx(library.c_str(), REGKIND_REGISTER, &loaded)) ||
            !Set(kProgIdKey + L"\\CLSID", kClassKey.substr(kClassKey.rfind(L'\\') + 1)) ||
            !Set(kClassKey + L"\\LocalServer32", L"\"" + program + L"\""))
            return std::puts("cannot register: copy beacon_util.tlb to this folder, and run as administrator"), 1;
        return 0;
    }
    if (option == "/unregserver")
        return static_cast<int>(RegDeleteTreeW(HKEY_LOCAL_MACHINE, kProgIdKey.c_str()) |
                                RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClassKey.c_str()));
    DWORD entry = 0, served = 0;
    if (RegisterActiveObject(&g_engine, kController, ACTIVEOBJECT_STRONG, &entry) != S_OK)
        return std::puts("another engine is running"), 1;
    CoRegisterClassObject(kForScripts, &g_factory, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &served);
    while (!g_quit) Serve(100, false);
    // Leave the table first, or the adapters reconnect. Then wait for their good-byes.
    RevokeActiveObject(entry, nullptr);
    CoRevokeClassObject(served);
    g_engine.Tell(_bstr_t(L"<EXIT now=\"1\"/>"), &IMessageDispatch::PutControl);
    Serve(500, false);
}
