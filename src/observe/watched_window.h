#pragma once

#include <windows.h>

#include <string>

#include "com/object.h"

namespace beacon {

/// What both listeners do with the top-level window that they follow.

/// Marks a window as having a listener: the property "PROP_OLK", whose value is the raw pointer of the Outlook object
/// that the window shows. Removes the mark when it ends.
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

/// Deletes the first command bar of this explorer or inspector that carries the add-in's marker. Raises Outlook's
/// error.
void RemoveBeaconCommandBar(const com::Object& window);

/// The window of the explorer or inspector with this caption: a new item window, or else the top-level window of
/// Outlook's class in this process with exactly this title; 0 when there is none. The flag goes to the first search.
long FindOutlookWindow(const std::wstring& caption, bool flag);

}  // namespace beacon
