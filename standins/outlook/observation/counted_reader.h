#pragma once

#include <windows.h>

#include "common/called_dual.h"
#include "mapi_prop.h"

namespace beacon::standin {

/// Resource number of the property reader's type library in this program.
inline constexpr int kMapiLibrary = 3;

/// The installed property reader with its calls numbered, so that each can be made to fail. The program serves this
/// class to its add-ins, and every object hands its calls on to one of the DLL that is registered.
class CountedReader final : public CalledDual<IMAPIPropWrapper, kMapiLibrary> {
public:
    /// Throws what creating the installed reader gives: class not registered where there is none.
    CountedReader();
    ~CountedReader() override;

    /// Readers that are held from outside.
    static int Alive();

    STDMETHODIMP GetStringProperty(VARIANT item, long tag, VARIANT* value) override;
    STDMETHODIMP Initialize() override;
    STDMETHODIMP Uninitialize() override;
    STDMETHODIMP GetStringPropertyLimited(VARIANT item, long tag, long maxChars, BSTR* value) override;

private:
    com::ComPtr<IMAPIPropWrapper> reader_;
};

}  // namespace beacon::standin
