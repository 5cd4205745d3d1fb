#pragma once

#include <windows.h>

#include "common/called_dual.h"
#include "mapi_prop.h"
#include "outlook/item.h"

namespace beacon::standin {

/// Resource number of the property reader's type library in this program.
inline constexpr int kMapiLibrary = 3;

/// The MAPI property reader: reads an item's stored properties below the object model. A property that the item does
/// not have is the empty text; a tag that no item of this store can have is MAPI_E_NOT_FOUND. Properties of the 8-bit
/// string type (tags ending in 1E) come squeezed through the ANSI code page.
class MapiReader final : public CalledDual<IMAPIPropWrapper, kMapiLibrary> {
public:
    MapiReader();
    ~MapiReader() override;

    /// Readers that are held from outside.
    static int Alive();

    STDMETHODIMP GetStringProperty(VARIANT item, long tag, VARIANT* value) override;
    STDMETHODIMP Initialize() override;
    STDMETHODIMP Uninitialize() override;
    STDMETHODIMP GetStringPropertyLimited(VARIANT item, long tag, long maxChars, BSTR* value) override;

private:
    HRESULT Read(const VARIANT& item, long tag, std::wstring& text) const;

    bool initialized_ = false;
};

/// The stored text of a property; nullopt for an unknown tag. For tests of the table as well.
std::optional<std::wstring> MapiText(const Item& item, long tag);

}  // namespace beacon::standin
