#pragma once

#include <windows.h>

#include <beacon_util.h>

#include <string>

#include "com/object.h"

namespace beacon {

/// The toolbar's definition and commands, as the engine's utility server gives them or, where that is absent, as the
/// add-in's own settings do. The object behind is created at first need; every member raises its errors. A server that
/// has died is let go, so that the next use finds its successor.
class ConfigClient {
public:
    /// Creates the object behind if there is none.
    void Create() { Config(); }

    bool IsCreated() const { return config_ != nullptr; }

    long ButtonCount();
    std::wstring ButtonCaption(long index);
    std::wstring ButtonTooltip(long index);
    std::wstring ButtonBitmapPath(long index);
    bool ButtonEnabled(long index);
    OLE_COLOR ButtonMaskColor(long index);

    /// 1 when the context box is shown and used.
    long ContextMode();
    std::wstring DefaultContextText();
    std::wstring ContextWarningTitle();
    std::wstring ContextWarningText();

    /// 3 when the engine is ready to take a command.
    long EngineState();
    void BeginCommand();
    void CommandDone(long hWnd);
    void NewSearch(long hWnd, const std::wstring& text);

    struct Layout {
        long height = 0;
        long width = 0;
        long left = 0;
        long top = 0;
        long rowIndex = 0;
        std::wstring position;
    };

    void SaveLayout(const std::wstring& application, const Layout& layout);
    Layout LoadLayout(const std::wstring& application);

private:
    com::ComPtr<IToolbarConfig> Config();
    void Check(HRESULT result);

    com::ComPtr<IToolbarConfig> config_;
};

}  // namespace beacon
