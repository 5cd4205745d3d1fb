#include "com/dual.h"

#include <string>

namespace beacon::com {

ComPtr<ITypeInfo> EmbeddedTypeInfo(int library, REFIID interfaceId) {
    const std::wstring resource = ModulePath() + L"\\" + static_cast<wchar_t>(L'0' + library);
    ComPtr<ITypeLib> loaded;
    Check(LoadTypeLibEx(resource.c_str(), REGKIND_NONE, &loaded));
    ComPtr<ITypeInfo> info;
    Check(loaded->GetTypeInfoOfGuid(interfaceId, &info));
    return info;
}

HRESULT TypeInfoGetIDs(int library, REFIID id, LPOLESTR* names, UINT count, DISPID* members) noexcept {
    return Method([&] { return DispGetIDsOfNames(EmbeddedTypeInfo(library, id).Get(), names, count, members); });
}

HRESULT TypeInfoInvoke(int library, REFIID id, void* object, DISPID member, WORD flags, DISPPARAMS* parameters,
                       VARIANT* value, EXCEPINFO* info, UINT* wrongArgument) noexcept {
    return Method([&] {
        return DispInvoke(object, EmbeddedTypeInfo(library, id).Get(), member, flags, parameters, value, info,
                          wrongArgument);
    });
}

}  // namespace beacon::com
