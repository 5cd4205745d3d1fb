#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace beacon::standin {

class Addin;
class Frame;
class Outlook;

/// What the add-ins left behind.
class ExitReport {
public:
    /// "Explorer 1: 2, Application: 1"; empty when nothing is held.
    static std::wstring References();
    static std::wstring Sinks();
    /// Windows whose PROP_OLK is set: "65610=0x1234"; empty when there is none.
    static std::wstring Properties(const Outlook& outlook);
    /// Windows of this thread whose class comes from the add-in's DLL, by class name; empty when there is none.
    static std::wstring WindowsOf(const Addin& addin);
    /// "S_OK", "S_FALSE", another result, "not loaded" or "not exported".
    static std::wstring UnloadAnswer(HMODULE library);

    /// Notes what is left on a window at its end.
    void NoteWindowEnd(const Frame& frame);
    /// References, sinks, properties.
    void Print(const Outlook& outlook) const;
    /// Asks each DLL whether it can be unloaded, unloads those that agree, and sends a key message through the queue: a
    /// hook that was left would crash Outlook there. False when that happened.
    bool PrintUnload(Outlook& outlook) const;

private:
    std::vector<std::wstring> leftProperties_;
};

}  // namespace beacon::standin
