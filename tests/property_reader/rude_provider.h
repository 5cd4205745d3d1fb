#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "com/counted.h"
#include "common/automation_object.h"
#include "outlook/object_model/mapi_object_base.h"

namespace beacon::test {

class RudeStream final : public com::Counted<IStream> {
public:
    using Reading = std::function<HRESULT(void* place, ULONG wanted, ULONG& got)>;

    explicit RudeStream(Reading reading) : reading_(std::move(reading)) {}

    STDMETHODIMP Read(void* place, ULONG wanted, ULONG* got) override { return reading_(place, wanted, *got); }

    STDMETHODIMP Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }

    STDMETHODIMP Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }

    STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }

    STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }

    STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }

    STDMETHODIMP Revert() override { return E_NOTIMPL; }

    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }

    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }

    STDMETHODIMP Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }

    STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

private:
    Reading reading_;
};

class RudeProvider final : public standin::MapiObjectBase {
public:
    /// Fills a value that is MAPI's memory with room for a text behind it.
    std::function<HRESULT(ULONG tag, SPropValue& value)> answer;
    std::function<HRESULT(ULONG tag, LPUNKNOWN& stream)> open = [](ULONG, LPUNKNOWN&) { return MAPI_E_NO_SUPPORT; };
    ULONG given = 1;                        ///< values that it says it gives
    bool withoutValues = false;             ///< and gives none
    std::optional<ULONG> namedTag;          ///< of whatever is asked for by a name
    static constexpr ULONG kRoom = 100000;  ///< bytes

    STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG, ULONG* count, LPSPropValue* values) override {
        *values = withoutValues ? nullptr : static_cast<LPSPropValue>(Allocate(sizeof(SPropValue) + kRoom));
        *count = given;
        if (withoutValues) return S_OK;
        **values = {tags->aulPropTag[0], 0, {}};
        return answer(tags->aulPropTag[0], **values);
    }

    STDMETHODIMP OpenProperty(ULONG tag, LPCIID, ULONG, ULONG, LPUNKNOWN* stream) override {
        return open(tag, *stream);
    }

    STDMETHODIMP GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray* tags) override {
        *tags = namedTag ? static_cast<LPSPropTagArray>(Allocate(sizeof(SPropTagArray))) : nullptr;
        if (namedTag) **tags = {1, {*namedTag}};
        return S_OK;
    }

private:
    static void* Allocate(ULONG size) {
        using Function = SCODE WINAPI(ULONG, void**);
        static const auto allocate = reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"mapi32.dll"), "MAPIAllocateBuffer")));
        void* memory = nullptr;
        if (FAILED(allocate(size, &memory))) throw std::bad_alloc();
        return memory;
    }
};

class ItemOver final : public standin::AutomationObject {
public:
    explicit ItemOver(const _variant_t& object) : AutomationObject(L"item") {
        AddProperty(1, L"MAPIOBJECT", [object] { return object; });
    }
};

}  // namespace beacon::test
