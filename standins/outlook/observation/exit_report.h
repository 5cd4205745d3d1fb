#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace beacon::standin {

class Addin;
class Frame;
class Outlook;

/// The text, or "none" if it is empty.
std::wstring OrNone(const std::wstring& text);

/// Reports what add-ins have not released or removed.
class ExitReport {
public:
    /// "Explorer 1: 2, Application: 1"; empty if there are no outside references.
    static std::wstring References();
    static std::wstring Sinks();
    /// Windows with the property PROP_OLK: "65610=0x1234"; empty if there are none.
    static std::wstring Properties(const Outlook& outlook);
    /// Class names of this thread's windows whose class belongs to the add-in's DLL; empty if there are none.
    static std::wstring WindowsOf(const Addin& addin);
    /// "S_OK", "S_FALSE", another result, "not loaded" or "not exported".
    static std::wstring UnloadAnswer(HMODULE library);

    /// Call before a window is destroyed; records a PROP_OLK that is still set.
    void NoteWindowEnd(const Frame& frame);
    /// Prints references, sinks, properties and property readers.
    void Print(const Outlook& outlook) const;
    /// Unloads each DLL that agrees, then dispatches a key message, which would call a hook that was left. Returns
    /// false if unloaded code was called.
    bool PrintUnload(Outlook& outlook) const;

private:
    std::vector<std::wstring> leftProperties_;
};

}  // namespace beacon::standin
