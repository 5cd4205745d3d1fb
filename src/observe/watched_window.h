#pragma once

#include <windows.h>

#include <string>

#include "com/object.h"

namespace beacon {

/// Marks a window as followed by a listener: sets its property "PROP_OLK" to the raw pointer of Outlook's object, and
/// removes it on destruction.
class ListenerMark {
public:
    ListenerMark() = default;
    ListenerMark(const ListenerMark&) = delete;
    ListenerMark& operator=(const ListenerMark&) = delete;

    ~ListenerMark() { Remove(); }

    void Set(long hWnd, const com::Object& outlookObject);
    void Remove() noexcept;

private:
    HWND window_ = nullptr;
};

/// Deletes the add-in's command bar of this explorer or inspector, if there is one. Raises Outlook's error.
void RemoveBeaconCommandBar(const com::Object& window);

/// The top-level window of the explorer or inspector with this caption; 0 if there is none. Tries FindNewWindow with
/// this flag, then Outlook's window class and exactly this title.
long FindOutlookWindow(const std::wstring& caption, bool flag);

}  // namespace beacon
