#include "observe/watched_window.h"

#include "com/text.h"
#include "extract/window_search.h"
#include "toolbar/beacon_bar.h"

namespace beacon {
void ListenerMark::Set(long hWnd, const com::Object& outlookObject) {
    Remove();
    window_ = static_cast<HWND>(LongToHandle(hWnd));
    SetPropA(window_, kListenerProperty, static_cast<HANDLE>(outlookObject.Get()));
}

void ListenerMark::Remove() noexcept {
    if (window_ != nullptr) RemovePropA(window_, kListenerProperty);
    window_ = nullptr;
}

void RemoveBeaconCommandBar(const com::Object& window) {
    const com::Object bar = FindBeaconBar(window.GetObject(L"CommandBars"));
    if (bar) DeleteBeaconBar(bar);
}

long FindOutlookWindow(const std::wstring& caption, bool flag) {
    HWND window = FindNewWindow(caption, flag);
    if (window == nullptr) window = FindOwnWindow(kOutlookClass, caption.c_str());
    return HandleToLong(window);
}

}  // namespace beacon
