#include "tests/faults/outlook_session.h"

#include <shlobj.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "com/server_registration.h"
#include "common/call_points.h"
#include "common/journal.h"
#include "common/program.h"
#include "tests/fakes/built_dll.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kUserKey[] = L"Software\\Corvantis\\Beacon\\AppAdapters\\Outlook";
constexpr wchar_t kMachineKey[] = L"Software\\Tarnwell Systems, Inc\\Beacon\\AppAdapters\\Outlook";

std::vector<std::wstring> g_lines;

Options ProgramOptions() {
    Options options;
    options.barsFile = ProgramFolder() + L"\\no such folder\\bars.json";  // every run begins without the adapter's bar
    return options;
}

StoreFile Mailbox() {
    StoreFile store;
    for (const wchar_t* const name : {L"One", L"Two", L"Three", L"Four"}) {
        ItemData& mail = store.items.emplace_back();
        mail.subject = name;
        mail.body =
            L"The first line of the mail is here.\r\nThe second one has more to tell, in a second sentence.\r\n";
        mail.senderName = L"Bo Kim";
        mail.to = mail.receivedBy = L"Ann Lee";
    }
    ItemData& contact = store.items.emplace_back();
    contact.itemClass = ItemClass::Contact;
    contact.firstName = L"Ann";
    contact.lastName = L"Lee";
    contact.fullName = L"Ann Lee";
    contact.company = L"Lee & Co";
    contact.jobTitle = L"CFO";
    contact.email = L"ann@example.org";
    for (ItemData& item : store.items) item.entryId = item.Name();
    return store;
}

bool g_ownLoop = false;  // the harness itself dispatches the message

// A message loop of the add-in paints this window; the re-entrant call comes from there.
LRESULT CALLBACK HandleProbe(HWND window, UINT message, WPARAM w, LPARAM l) noexcept {
    if (message != WM_PAINT) return DefWindowProcW(window, message, w, l);
    ValidateRect(window, nullptr);
    if (!g_ownLoop) const CallPoint loop(CallPoint::OnBehalf{}, [] { return std::wstring(L"message loop"); });
    return 0;
}

HWND MakeProbe() {
    const HWND window = CreateWindowExW(WS_EX_NOACTIVATE, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr,
                                        nullptr, nullptr, nullptr);
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HandleProbe));
    return window;
}

// The re-entrant call of a message box comes while it opens; the user closes the box at once.
LRESULT CALLBACK HandleBox(int code, WPARAM w, LPARAM l) noexcept {
    const auto window = reinterpret_cast<HWND>(w);
    if (code == HCBT_ACTIVATE && GetClassLongPtrW(window, GCW_ATOM) == reinterpret_cast<ULONG_PTR>(WC_DIALOG)) {
        PostMessageW(window, WM_CLOSE, 0, 0);
        const CallPoint box(CallPoint::OnBehalf{}, [] { return std::wstring(L"message box"); });
    }
    return CallNextHookEx(nullptr, code, w, l);
}

}  // namespace

std::vector<std::wstring> TakeLines() { return std::exchange(g_lines, {}); }

void PrepareMachine() {
    TheJournal().Redirect([](std::wstring_view line) { g_lines.emplace_back(line); });
    for (const wchar_t* const library : {L"BeaconOLKAdapter.dll", L"BeaconMapiProp.dll"})
        com::Check(test::BuiltDll(test::BuiltDll::Path(library)).Call("DllRegisterServer"));
    com::WriteText(HKEY_CURRENT_USER, kUserKey, L"DefaultAutoUpdate", L"True");
    com::WriteText(HKEY_LOCAL_MACHINE, kMachineKey, L"StartAnalysisDelay", L"60000");
    wchar_t folder[MAX_PATH];
    ExpandEnvironmentStringsW(L"%AppData%\\Corvantis\\Beacon\\logs", folder, MAX_PATH);
    SHCreateDirectoryExW(nullptr, folder, nullptr);
}

OutlookSession::OutlookSession(InProcessEngine& engine, const wchar_t* toolbar, bool logging)
    : engine_(engine),
      loopProbe_(MakeProbe(), DestroyWindow),
      boxHook_(SetWindowsHookExW(WH_CBT, HandleBox, nullptr, GetCurrentThreadId()), UnhookWindowsHookEx) {
    engine_.toolbar.contextMode = ToolbarSettings{}.contextMode;
    com::WriteText(HKEY_CURRENT_USER, kUserKey, L"EnableToolbar", toolbar);
    const DWORD log = logging ? 1 : 0;
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kMachineKey, L"Logging", REG_DWORD, &log, sizeof log);
    outlook_ = std::make_unique<Outlook>(ProgramOptions(), Mailbox());
    readerServer_ = std::make_unique<ReaderServer>();
}

OutlookSession::~OutlookSession() { Destroy(); }

void OutlookSession::AwaitLoop() { InvalidateRect(loopProbe_.get(), nullptr, FALSE); }

std::shared_ptr<Item> OutlookSession::Find(const std::wstring& name) const {
    const auto& items = outlook_->Items().Items();
    const auto found = std::ranges::find(items, name, [](const auto& item) { return item->Data().Name(); });
    return found == items.end() ? nullptr : *found;
}

void OutlookSession::Select(const wchar_t* item) {
    const auto explorer = outlook_->ActiveExplorer();
    const auto found = Find(item);
    if (explorer != nullptr && found != nullptr) explorer->Select({found});
}

void OutlookSession::Open(const wchar_t* item) {
    if (const auto found = Find(item)) outlook_->OpenInspector(found, true);
}

void OutlookSession::CloseActive() {
    if (const auto frame = outlook_->ActiveFrame()) outlook_->CloseFrame(*frame);
}

CommandBarsHost* OutlookSession::BarsWith(const wchar_t* caption) const {
    const auto frame = outlook_->ActiveFrame();
    CommandBarsHost* const bars = frame == nullptr ? nullptr : frame->Bars();
    return bars != nullptr && bars->Has(caption) ? bars : nullptr;
}

void OutlookSession::Press(const wchar_t* caption) {
    if (CommandBarsHost* const bars = BarsWith(caption)) bars->PressNow(caption);
}

void OutlookSession::Tick(FormTimer timer) {
    for (const HWND form : HiddenForms()) PostMessageW(form, WM_TIMER, static_cast<WPARAM>(timer), 0);
    Pump();
}

void OutlookSession::Pump() {
    constexpr UINT kAllButTimers = PM_REMOVE | PM_QS_POSTMESSAGE | PM_QS_SENDMESSAGE | PM_QS_PAINT | PM_QS_INPUT;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, kAllButTimers)) {
        if (message.message == WM_PAINT && message.hwnd != loopProbe_.get()) {
            ValidateRect(message.hwnd, nullptr);
            continue;
        }
        TranslateMessage(&message);
        g_ownLoop = message.hwnd == loopProbe_.get();
        DispatchMessageW(&message);
        g_ownLoop = false;
    }
}

std::vector<HWND> OutlookSession::HiddenForms() const {
    std::vector<HWND> forms;
    for (HWND window = nullptr; (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;) {
        if (GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) continue;
        const auto library = reinterpret_cast<HMODULE>(GetClassLongPtrW(window, GCLP_HMODULE));
        for (const auto& addin : outlook_->Addins().Addins())
            if (library != nullptr && addin->Module() == library) forms.push_back(window);
    }
    return forms;
}

std::wstring OutlookSession::DocumentOf(const wchar_t* item) {
    TakeLines();
    Select(item);
    Tick(FormTimer::Analysis);
    std::wstring document;
    for (const std::wstring& line : TakeLines())
        if (line.starts_with(L"message "))
            std::ranges::copy_if(line, std::back_inserter(document), [](wchar_t c) { return c < L'0' || c > L'9'; });
    return document.find(L" <eod ") == std::wstring::npos ? std::wstring() : document;
}

void OutlookSession::ConnectAgain() {
    DisconnectAll(RemoveMode::UserClosed);
    quitIsUnheard_ = quitIsUnheard_ || outlook_->IsQuitting();
    for (const auto& addin : outlook_->Addins().Addins()) outlook_->Addins().Connect(*addin, ConnectMode::AfterStartup);
}

void OutlookSession::DisconnectAll(RemoveMode mode) {
    for (const auto& addin : outlook_->Addins().Addins()) outlook_->Addins().Disconnect(*addin, mode);
}

void OutlookSession::RaiseQuit() {
    if (!outlook_->IsQuitting()) quitIsUnheard_ = outlook_->ApplicationObject()->Sinks() == 0;
    outlook_->RaiseQuitNow();
}

void OutlookSession::Quit() {
    if (!outlook_->IsQuitting()) CloseWindows();
    QuitWithWindows();
}

void OutlookSession::QuitWithWindows() {
    outlook_->RaiseQuitNow();
    outlook_->Addins().BeginShutdown();
    for (const FormTimer timer : {FormTimer::Analysis, FormTimer::Reconnect, FormTimer::Disconnect, FormTimer::Toolbar})
        Tick(timer);
    heldAfterQuit_ = ExitReport::References();
    DisconnectAll(RemoveMode::HostShutdown);
    DisconnectAll(RemoveMode::HostShutdown);  // the first may have connected it again, inside a call
}

void OutlookSession::Disconnect() {
    if (outlook_->IsQuitting()) return Quit();
    DisconnectAll(RemoveMode::UserClosed);
    DisconnectAll(RemoveMode::UserClosed);
}

void OutlookSession::CloseWindows() {
    const auto inspectors = outlook_->OpenInspectors();
    for (const auto& inspector : inspectors) outlook_->CloseFrame(*inspector);
    const auto explorers = outlook_->OpenExplorers();
    for (const auto& explorer : explorers) outlook_->CloseFrame(*explorer);
}

void OutlookSession::Destroy() {
    if (outlook_ == nullptr) return;
    outlook_->RequestQuit(QuitMode::Now);
    CloseWindows();
    Pump();
    readerServer_.reset();
    outlook_.reset();
}

}  // namespace beacon::standin
