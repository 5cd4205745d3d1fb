#pragma once

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "com/event_sink.h"
#include "com/object.h"
#include "common/program.h"
#include "outlook/bars/command_bars_host.h"
#include "tests/fakes/raised_by.h"

namespace beacon::standin::test {

using beacon::test::RaisedBy;
using com::FromLong;
using com::FromText;
using com::Missing;

/// A top-level window with command bars, used as an add-in uses it: by name.
class BarWindow {
public:
    explicit BarWindow(BarStore& store, WindowKind kind = WindowKind::Explorer)
        : top(CreateWindowExW(0, L"STATIC", L"Bars", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 800, 300, nullptr,
                              nullptr, GetModuleHandleW(nullptr), nullptr)),
          host(std::make_unique<CommandBarsHost>(top, kind, store)) {}

    ~BarWindow() {
        host.reset();
        DestroyWindow(top);
    }

    com::Object Bars() const { return com::Object(static_cast<IDispatch*>(host->CommandBars().get())); }

    com::Object Bar(const wchar_t* name) const { return Bars().GetObject(L"Item", {FromText(name)}); }

    com::Object AddBar(const wchar_t* name, bool temporary = false) const {
        const com::Object bar = Bars().CallObject(L"Add", {FromText(name), FromLong(1), Missing(), temporary});
        bar.Put(L"Visible", true);
        return bar;
    }

    static com::Object AddControl(const com::Object& bar, long type, const wchar_t* caption) {
        const com::Object control = bar.GetObject(L"Controls").CallObject(L"Add", {FromLong(type)});
        control.Put(L"Caption", FromText(caption));
        return control;
    }

    static com::Object Control(const com::Object& bar, long index) {
        return bar.GetObject(L"Controls").GetObject(L"Item", {FromLong(index)});
    }

    const HWND top;
    std::unique_ptr<CommandBarsHost> host;
};

class CommandBars : public testing::Test {
protected:
    BarStore store_;
    BarWindow window_{store_};
    com::Object bar_ = window_.AddBar(L"Mine");
};

}  // namespace beacon::standin::test
