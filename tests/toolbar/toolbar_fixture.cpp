#include "toolbar_fixture.h"

#include "outlook/bars/control_objects.h"

namespace beacon::test {
namespace {

class FakeWindow final : public standin::AutomationObject {
public:
    explicit FakeWindow(std::shared_ptr<standin::BarSet> bars) : AutomationObject(L"Window"), bars_(std::move(bars)) {
        AddProperty(1, L"CommandBars", [this] { return standin::Give(bars_->CommandBars()); });
    }

private:
    const std::shared_ptr<standin::BarSet> bars_;
};

}  // namespace

FakeOutlook::FakeOutlook() : AutomationObject(L"Application") {
    AddEither(1, L"ActiveExplorer", 0, 0, [this](const standin::CallArguments&) { return Window(explorer); });
    AddEither(2, L"ActiveInspector", 0, 0, [this](const standin::CallArguments&) { return Window(inspector); });
}

_variant_t FakeOutlook::Window(const std::shared_ptr<standin::BarSet>& bars) const {
    return standin::Give(bars == nullptr ? nullptr : std::make_shared<FakeWindow>(bars));
}

void ToolbarFixture::SetUp() {
    AdapterTest::SetUp();
    RegisterServer();
    config_.bitmapFolder = TOOLBAR_BITMAPS;
    outlook_ = std::make_shared<FakeOutlook>();
    host_.outlook = com::ToObject(standin::Give(outlook_));
    OpenWindow();
}

void ToolbarFixture::OpenWindow() {
    toolbar_.Reset();
    if (bars_ != nullptr) bars_->Close();
    bars_ = std::make_shared<standin::BarSet>(standin::WindowKind::Explorer, store_);
    bars_->SetView(this);
    outlook_->explorer = bars_;
    toolbar_ = NewToolbar(host_);
}

void ToolbarFixture::RegisterServer() {
    ASSERT_EQ(CoRegisterClassObject(__uuidof(::ToolbarConfig), MakeConfigFactory(config_).Get(), CLSCTX_INPROC_SERVER,
                                    REGCLS_MULTIPLEUSE, &classRegistration_),
              S_OK);
}

void ToolbarFixture::Uninstall() {
    if (classRegistration_ != 0) CoRevokeClassObject(std::exchange(classRegistration_, 0));
}

void ToolbarFixture::TearDown() {
    toolbar_.Reset();
    host_.outlook.Reset();
    EXPECT_EQ(host_.references, 0u) << "the connection must not be kept by its toolbar";
    bars_->Close();
    Uninstall();
    AdapterTest::TearDown();
}

com::ComPtr<CToolbar> ToolbarFixture::NewToolbar(FakeHost& host) {
    auto toolbar = com::MakeObject<CToolbar>();
    toolbar->SetConnect(&host);
    return toolbar;
}

bool ToolbarFixture::Click(int position) {
    std::wstring said;
    bars_->SetListener([&](const std::wstring& line) { said = line; });
    bars_->RaiseClick(BeaconBar()->controls.at(static_cast<size_t>(position) - 1));
    bars_->SetListener({});
    return !said.ends_with(L" cancelled");
}

void ToolbarFixture::Choose(const std::wstring& text) {
    standin::EnterText(Control(3), text);
    bars_->RaiseChange(BeaconBar()->controls.at(2));
}

std::vector<std::wstring> ToolbarFixture::Tags() const {
    std::vector<std::wstring> tags;
    for (const auto& control : BeaconBar()->controls) tags.push_back(control->tag);
    return tags;
}

void AwaitNextSecond() {
    SYSTEMTIME start;
    SYSTEMTIME now;
    GetLocalTime(&start);
    do {
        Sleep(5);
        GetLocalTime(&now);
    } while (now.wSecond == start.wSecond);
}

}  // namespace beacon::test
