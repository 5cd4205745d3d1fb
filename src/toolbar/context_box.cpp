#include "toolbar/context_box.h"

namespace beacon {

long FindComboItem(const com::Object& box, const std::wstring& text) {
    const long count = box.GetLong(L"ListCount");
    for (long i = 1; i <= count; ++i)
        if (box.GetText(L"List", {com::FromLong(i)}) == text) return i;
    return 0;
}

void RefillContextBox(const com::Object& box, const std::vector<std::wstring>& contexts, const std::wstring& current,
                      bool shared, const std::wstring& defaultText) {
    const _variant_t top = com::FromLong(1);
    if (!shared) box.Call(L"Clear");
    for (const std::wstring& context : contexts)
        if (FindComboItem(box, context) == 0) box.Call(L"AddItem", {com::FromText(context), top});
    box.Put(L"ListIndex", com::FromLong(FindComboItem(box, current)));
    if (contexts.empty()) {
        box.Call(L"AddItem", {com::FromText(defaultText), top});
        box.Put(L"ListIndex", com::FromLong(1));
    }
}

}  // namespace beacon
