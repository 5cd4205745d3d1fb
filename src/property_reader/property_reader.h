#pragma once

#include <windows.h>

#include <mapi_prop.h>

#include <string>

#include "com/dual.h"

namespace beacon {

/// Resource number of its type library in the DLL.
inline constexpr int kReaderLibrary = 1;

/// Reads the texts of Outlook's items below the object model: of the MAPI object that an item itself hands out, so that
/// Outlook has nothing to ask the user. contracts/mapi_prop.idl has the contract.
class PropertyReader final : public com::Dual<IMAPIPropWrapper, kReaderLibrary> {
public:
    STDMETHODIMP GetStringProperty(VARIANT item, long tag, VARIANT* value) override;
    STDMETHODIMP Initialize() override;
    STDMETHODIMP Uninitialize() override;
    STDMETHODIMP GetStringPropertyLimited(VARIANT item, long tag, long maxChars, BSTR* value) override;

private:
    /// `most`: characters.
    std::wstring Read(const VARIANT& item, long tag, long most) const;

    bool initialized_ = false;
};

}  // namespace beacon
