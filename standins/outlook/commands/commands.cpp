#include "outlook/commands/commands.h"

namespace beacon::standin {
namespace {

template <class Kind>
std::shared_ptr<Frame> TakeNumbered(const std::vector<std::shared_ptr<Kind>>& windows, std::shared_ptr<Kind> active,
                                    Words& words, const wchar_t* kind) {
    if (!words.NextIsNumber()) {
        if (active == nullptr) throw ScriptError{std::wstring(L"there is no ") + kind};
        return active;
    }
    const long number = words.TakeNumber(kind);
    for (const auto& window : windows)
        if (window->Number() == number) return window;
    throw ScriptError{std::wstring(L"there is no ") + kind + L" " + std::to_wstring(number)};
}

}  // namespace

std::shared_ptr<Item> TakeItem(Outlook& outlook, Words& words) { return outlook.Items().Find(words.Take(L"item")); }

std::shared_ptr<Frame> ActiveWindow(Outlook& outlook) {
    const auto frame = outlook.ActiveFrame();
    if (frame == nullptr) throw ScriptError{L"there is no window"};
    return frame;
}

std::shared_ptr<Explorer> ActiveExplorerWindow(Outlook& outlook) {
    const auto explorer = outlook.ActiveExplorer();
    if (explorer == nullptr) throw ScriptError{L"there is no explorer"};
    return explorer;
}

std::shared_ptr<Frame> TakeWindow(Outlook& outlook, Words& words) {
    if (words.AtEnd()) return ActiveWindow(outlook);
    if (words.Accept(L"explorer"))
        return TakeNumbered(outlook.OpenExplorers(), outlook.ActiveExplorer(), words, L"explorer");
    if (words.Accept(L"inspector"))
        return TakeNumbered(outlook.OpenInspectors(), outlook.ActiveInspector(), words, L"inspector");
    const auto item = TakeItem(outlook, words);
    for (const auto& inspector : outlook.OpenInspectors())
        if (inspector->ShownItem() == item) return inspector;
    throw ScriptError{L"that item is not open"};
}

}  // namespace beacon::standin
