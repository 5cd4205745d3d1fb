#include "extract/mapi_wrapper.h"

#include <mapi_prop.h>

#include <utility>

#include "support/error_styles.h"
#include "support/log.h"
#include "support/settings.h"

namespace beacon {
namespace {

using com::ComPtr;

// On this machine only: mail must not leave it.
constexpr DWORD kServers = CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER;

// Plain data without a destructor: if Outlook exits without disconnecting the add-in, the object's DLL may be unloaded
// first.
IMAPIPropWrapper* gMapiWrapper = nullptr;
bool gMapiWrapperReady = false;
bool gMapiWrapperAllowed = true;

ComPtr<IMAPIPropWrapper> Wrapper() {
    if (!gMapiWrapperReady) com::Raise(com::kNoObject);
    return ComPtr<IMAPIPropWrapper>(gMapiWrapper);
}

/// Whether no later call can succeed: the reader's process has died, or it has carried out an Uninitialize that failed.
bool HasEnded(HRESULT result) {
    constexpr auto kNotInitialized = static_cast<HRESULT>(0x80040605);  // MAPI_E_NOT_INITIALIZED
    return com::ServerHasDied(result) || result == kNotInitialized;
}

/// Raises the error of a read. Drops a reader that has ended, so that the next read gets a new one.
void CheckReading(HRESULT result, const ComPtr<IMAPIPropWrapper>& wrapper) {
    if (HasEnded(result)) StopOnError([] { UninitMapiWrapper(); });
    com::Check(result, wrapper.Get());
}

}  // namespace

void AllowMapiWrapper(bool allowed) noexcept { gMapiWrapperAllowed = allowed; }

void InitMapiWrapper() {
    if (gMapiWrapperReady || !gMapiWrapperAllowed) return;
    StopOnError([] {
        LogMsg2(L"InitMapiWrapper Entered");
        CLSID id;
        com::Check(CLSIDFromProgID(kMapiWrapperProgId, &id));
        ComPtr<IMAPIPropWrapper> wrapper;
        com::Check(CoCreateInstance(id, nullptr, kServers, IID_PPV_ARGS(&wrapper)));
        com::Check(wrapper->Initialize(), wrapper.Get());
        if (gMapiWrapperReady || !gMapiWrapperAllowed) {  // changed inside these calls
            wrapper->Uninitialize();
            return;
        }
        gMapiWrapper = wrapper.Detach();
        gMapiWrapperReady = true;
        ReadUseObjectModelSetting();
    });
}

void UninitMapiWrapper() {
    if (!gMapiWrapperReady) return;
    LogMsg2(L"UninitMapiWrapper Entered");
    const ComPtr<IMAPIPropWrapper> wrapper(gMapiWrapper);
    const HRESULT result = wrapper->Uninitialize();
    if (!HasEnded(result)) com::Check(result, wrapper.Get());
    AbandonMapiWrapper();
}

void AbandonMapiWrapper() noexcept {
    gMapiWrapperReady = false;
    if (IMAPIPropWrapper* const wrapper = std::exchange(gMapiWrapper, nullptr)) wrapper->Release();
}

std::wstring MapiText(const com::Object& item, long tag) {
    const ComPtr<IMAPIPropWrapper> wrapper = Wrapper();
    _variant_t value;
    CheckReading(wrapper->GetStringProperty(com::FromObject(item.Get()), tag, &value), wrapper);
    return com::ToText(value);
}

std::wstring MapiTextLimited(const com::Object& item, long tag, long maxCharacters) {
    const ComPtr<IMAPIPropWrapper> wrapper = Wrapper();
    _bstr_t value;
    CheckReading(wrapper->GetStringPropertyLimited(com::FromObject(item.Get()), tag, maxCharacters, value.GetAddress()),
                 wrapper);
    return com::ToText(value.GetBSTR());
}

}  // namespace beacon
