#include <cwctype>

#include "common/journal.h"
#include "outlook/commands/commands.h"

namespace beacon::standin {
namespace {

// The target of a key: the focused control if it is in this window, else the window.
HWND KeyTarget(const Frame& frame) {
    const HWND focus = GetFocus();
    return focus != nullptr && IsChild(frame.Handle(), focus) ? focus : frame.Handle();
}

struct NamedKey {
    const wchar_t* name;
    WORD code;
};

constexpr NamedKey kKeys[] = {
    {L"enter", VK_RETURN}, {L"tab", VK_TAB},   {L"escape", VK_ESCAPE}, {L"space", VK_SPACE},   {L"up", VK_UP},
    {L"down", VK_DOWN},    {L"left", VK_LEFT}, {L"right", VK_RIGHT},   {L"delete", VK_DELETE}, {L"back", VK_BACK},
    {L"home", VK_HOME},    {L"end", VK_END},   {L"shift", VK_SHIFT},   {L"f1", VK_F1},
};

WORD KeyCode(const std::wstring& name) {
    if (name.size() == 1) {
        const auto upper = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(name[0])));
        if ((upper >= L'A' && upper <= L'Z') || (upper >= L'0' && upper <= L'9')) return static_cast<WORD>(upper);
    }
    for (const NamedKey& key : kKeys)
        if (name == key.name) return key.code;
    throw ScriptError{L"unknown key \"" + name + L"\""};
}

void Key(Outlook& outlook, Words& words) {
    const auto window = ActiveWindow(outlook);
    const WORD code = KeyCode(words.Take(L"key"));
    words.End();
    const HWND target = KeyTarget(*window);
    PostMessageW(target, WM_KEYDOWN, code, 1);
    PostMessageW(target, WM_KEYUP, code, static_cast<LPARAM>(0xC0000001));
    Say(L"posted key to " + DecimalHandle(target));
}

// The control under a point of the client area; converts the point to the control's client coordinates.
HWND ChildAt(HWND top, POINT& point) {
    HWND target = top;
    for (;;) {
        const HWND child = ChildWindowFromPointEx(target, point, CWP_SKIPINVISIBLE | CWP_SKIPTRANSPARENT);
        if (child == nullptr || child == target) return target;
        MapWindowPoints(target, child, &point, 1);
        target = child;
    }
}

void Click(Outlook& outlook, Words& words) {
    const auto window = ActiveWindow(outlook);
    POINT point{words.TakeNumber(L"x"), 0};
    point.y = words.TakeNumber(L"y");
    words.End();
    const HWND target = ChildAt(window->Handle(), point);
    const LPARAM place = MAKELPARAM(point.x, point.y);
    PostMessageW(target, WM_LBUTTONDOWN, MK_LBUTTON, place);
    PostMessageW(target, WM_LBUTTONUP, 0, place);
    Say(L"posted click to " + DecimalHandle(target));
}

void Wheel(Outlook& outlook, Words& words) {
    const auto window = ActiveWindow(outlook);
    const long delta = words.AtEnd() ? -WHEEL_DELTA : words.TakeNumber(L"delta");
    words.End();
    POINT point{10, 10};
    ClientToScreen(window->Handle(), &point);
    PostMessageW(KeyTarget(*window), WM_MOUSEWHEEL, MAKEWPARAM(0, delta), MAKELPARAM(point.x, point.y));
    Say(L"posted wheel to " + DecimalHandle(KeyTarget(*window)));
}

void Move(Outlook& outlook, Words&) {
    const auto window = ActiveWindow(outlook);
    PostMessageW(window->Handle(), WM_MOUSEMOVE, 0, MAKELPARAM(10, 10));
    Say(L"posted move to " + DecimalHandle(window->Handle()));
}

}  // namespace

const std::vector<Command>& InputCommands() {
    static const std::vector<Command> commands = {
        {L"key K", L"posts a key (letter, digit, enter, tab, left...) to the active window", Key},
        {L"click X Y", L"posts a mouse click, client coordinates", Click},
        {L"wheel [DELTA]", L"posts a turn of the mouse wheel", Wheel},
        {L"move", L"posts a mouse move", Move},
    };
    return commands;
}

}  // namespace beacon::standin
