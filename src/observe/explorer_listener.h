#pragma once

#include <string>

#include "extract/class_paths.h"
#include "observe/listener_object.h"

namespace beacon {

/// Follows one Outlook explorer: when its selection changes, sends the first selected item and the text selected in the
/// reading pane. Inactive until Init.
class ExplorerListener final : public ListenerObject<IExplorerListener> {
public:
    explicit ExplorerListener(Services& services) : ListenerObject(services) {}

    /// Keeps the explorer and subscribes to its events. Raises an error, and keeps nothing, when Outlook refuses.
    void Watch(const com::Object& explorer);
    std::wstring GetSelected();

    bool IsInspector() const override { return false; }

    STDMETHODIMP Connect() override;
    STDMETHODIMP Send() override;

    STDMETHODIMP get_hExplorer(long* value) override { return com::Give(value, hWnd_); }

    STDMETHODIMP put_hExplorer(long value) override { return com::Take(hWnd_, value); }

    STDMETHODIMP get_objExplorer(IDispatch** value) override { return com::GiveObject(value, objWindow_.Get().Get()); }

    STDMETHODIMP put_objExplorer(IDispatch* value) override { return SetExplorer(&value); }

    STDMETHODIMP putref_objExplorer(IDispatch* value) override { return SetExplorer(&value); }

    STDMETHODIMP SetExplorer(IDispatch** aExplorer) override {
        return com::Method([&] { Watch(aExplorer == nullptr ? nullptr : *aExplorer); });
    }

    STDMETHODIMP GetSelected(BSTR* result) override { return com::GiveText(result, GetSelected()); }

private:
    void Start(long ahExplorer) override;

    void OnEvent(DISPID member);
    void objExplorer_Activate();
    void objExplorer_SelectionChange();
    void objExplorer_ViewSwitch();
    std::wstring GetSelectedEx(const ExplorerSelectionPath& path) const;
    static bool ReadControl(HWND parent, const char* controlClass, std::wstring& selection);
};

}  // namespace beacon
