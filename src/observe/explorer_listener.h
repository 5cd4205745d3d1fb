#pragma once

#include <string>

#include "extract/class_paths.h"
#include "observe/listener_face.h"

namespace beacon {

/// Follows one Outlook explorer: when its selection changes, the first selected item is sent, together with the text
/// that is selected in the reading pane. Inactive until Init gives it its window.
class ExplorerListener final : public ListenerObject<IExplorerListener> {
public:
    explicit ExplorerListener(Services& services) : ListenerObject(services) {}

    /// Starts event delivery. Raises an error when Outlook refuses; nothing is held of the explorer then.
    void SetExplorer(const com::Object& aExplorer);
    std::wstring GetSelected();

    bool IsInspector() const override { return false; }

    STDMETHODIMP get_hExplorer(long* value) override;
    STDMETHODIMP put_hExplorer(long value) override;
    STDMETHODIMP get_objExplorer(IDispatch** value) override;
    STDMETHODIMP put_objExplorer(IDispatch* value) override;
    STDMETHODIMP putref_objExplorer(IDispatch* value) override;
    STDMETHODIMP SetExplorer(IDispatch** aExplorer) override;
    STDMETHODIMP GetSelected(BSTR* result) override;

private:
    void Start(long ahExplorer) override;
    void TryToConnect() override;
    void SendItem() override;
    void RemoveFromRegistry() override;

    void OnEvent(DISPID member);
    void objExplorer_Activate();
    void objExplorer_Close();
    void objExplorer_SelectionChange();
    void objExplorer_ViewSwitch();
    std::wstring GetSelectedEx(const ExplorerSelectionPath& path) const;
    static bool ReadControl(HWND parent, const char* controlClass, std::wstring& selection);
};

}  // namespace beacon
