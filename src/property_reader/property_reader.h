#pragma once

#include <windows.h>

#include <mapi_prop.h>

#include <string>

#include "com/dual.h"

namespace beacon {

/// Resource number of the type library.
inline constexpr int kReaderLibrary = 1;

/// Reads texts of Outlook's items from their MAPI objects, because the object model would show a security prompt. See
/// contracts/mapi_prop.idl.
class PropertyReader final : public com::Dual<IMAPIPropWrapper, kReaderLibrary> {
public:
    STDMETHODIMP GetStringProperty(VARIANT item, long tag, VARIANT* value) override;
    STDMETHODIMP Initialize() override;
    STDMETHODIMP Uninitialize() override;
    STDMETHODIMP GetStringPropertyLimited(VARIANT item, long tag, long maxChars, BSTR* value) override;

private:
    /// `most` is in characters.
    std::wstring Read(const VARIANT& item, long tag, long most) const;

    bool initialized_ = false;
};

}  // namespace beacon
