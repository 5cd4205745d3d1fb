#pragma once

#include "beacon_util.h"
#include "common/called_dual.h"

namespace beacon::standin {

/// An IToolbarConfig without its reserved members.
template <int Library>
class ToolbarConfigBase : public CalledDual<IToolbarConfig, Library> {
public:
    ToolbarConfigBase() : CalledDual<IToolbarConfig, Library>(L"ToolbarConfig") {}

    STDMETHODIMP Reserved1() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved2() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved4() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved5() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved6() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved9() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved11() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved18() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved21() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved22() override { return E_NOTIMPL; }
};

}  // namespace beacon::standin
