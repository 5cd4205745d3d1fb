#pragma once

#include <windows.h>

#include "common/called_dual.h"
#include "mapi_prop.h"

namespace beacon::standin {

/// Resource id of the property reader's type library.
inline constexpr int kMapiLibrary = 3;

/// Wraps the registered property reader so that its calls are numbered and can be made to fail.
class CountedReader final : public CalledDual<IMAPIPropWrapper, kMapiLibrary> {
public:
    /// Throws the error of creating the registered reader.
    CountedReader();
    ~CountedReader() override;

    /// Number of readers that exist.
    static int Alive();

    STDMETHODIMP GetStringProperty(VARIANT item, long tag, VARIANT* value) override;
    STDMETHODIMP Initialize() override;
    STDMETHODIMP Uninitialize() override;
    STDMETHODIMP GetStringPropertyLimited(VARIANT item, long tag, long maxChars, BSTR* value) override;

private:
    com::ComPtr<IMAPIPropWrapper> reader_;
};

/// Serves CountedReader as the class of the property reader to this process until destruction.
class ReaderServer {
public:
    /// Throws com::Error.
    ReaderServer();
    ReaderServer(const ReaderServer&) = delete;
    ReaderServer& operator=(const ReaderServer&) = delete;
    ~ReaderServer();

private:
    DWORD cookie_ = 0;
};

}  // namespace beacon::standin
