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

/// A stream that a test reads from.
class ScriptedStream final : public com::Counted<IStream> {
public:
    using Reading = std::function<HRESULT(void* place, ULONG wanted, ULONG& got)>;

    explicit ScriptedStream(Reading reading) : reading_(std::move(reading)) {}

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

/// A MAPI object that gives what a test tells it to, also against MAPI's rules.
class ScriptedProvider final : public standin::MapiObjectBase {
public:
    static constexpr ULONG kRoom = 100000;  ///< bytes behind a value, for its text
    std::function<HRESULT(ULONG tag, SPropValue& value)> answer;
    std::function<HRESULT(ULONG tag, LPUNKNOWN& stream)> open = [](ULONG, LPUNKNOWN&) { return MAPI_E_NO_SUPPORT; };
    ULONG count = 1;                ///< of values, as it says
    bool withoutValues = false;     ///< it gives a null pointer
    std::optional<ULONG> namedTag;  ///< of every named property; if missing, it gives a null pointer
    long given = 0;                 ///< blocks of memory that the reader must free

    STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG, ULONG* valueCount, LPSPropValue* values) override {
        *valueCount = count;
        *values = withoutValues ? nullptr : static_cast<LPSPropValue>(Allocate(sizeof(SPropValue) + kRoom));
        if (withoutValues) return S_OK;
        **values = {tags->aulPropTag[0], 0, {}};
        const HRESULT result = answer(tags->aulPropTag[0], **values);
        if (SUCCEEDED(result)) ++given;
        return result;
    }

    STDMETHODIMP OpenProperty(ULONG tag, LPCIID, ULONG, ULONG, LPUNKNOWN* stream) override {
        return open(tag, *stream);
    }

    STDMETHODIMP GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray* tags) override {
        *tags = namedTag ? static_cast<LPSPropTagArray>(Allocate(sizeof(SPropTagArray))) : nullptr;
        if (!namedTag) return S_OK;
        **tags = {1, {*namedTag}};
        ++given;
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
