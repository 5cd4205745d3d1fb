#include "outlook/bars/bar_set.h"

#include <algorithm>

#include "outlook/bars/control_objects.h"

namespace beacon::standin {

void InvalidArgument() { throw com::Error(5, L"Invalid procedure call or argument", L"Microsoft Outlook"); }

BarSet::BarSet(WindowKind kind, BarStore& store) : kind_(kind), store_(&store) {
    for (const Bar& bar : store.Bars(kind)) bars_.push_back(std::make_shared<Bar>(Copy(bar, true)));
}

BarSet::BarPointer BarSet::Find(const std::wstring& name) const {
    const auto found =
        std::find_if(bars_.begin(), bars_.end(), [&](const BarPointer& bar) { return SameName(bar->name, name); });
    return found == bars_.end() ? nullptr : *found;
}

BarSet::BarPointer BarSet::Add(std::wstring name, long position, bool temporary) {
    for (int number = 1; name.empty(); ++number) {
        const std::wstring free = L"Custom " + std::to_wstring(number);
        if (Find(free) == nullptr) name = free;
    }
    if (Find(name) != nullptr) InvalidArgument();
    const auto bar = std::make_shared<Bar>();
    bar->name = std::move(name);
    bar->position = position;
    bar->temporary = temporary;
    for (const BarPointer& other : bars_)
        if (other->visible) bar->rowIndex = std::max(bar->rowIndex, other->rowIndex);
    ++bar->rowIndex;
    bars_.push_back(bar);
    if (!temporary && store_ != nullptr) store_->Add(kind_, *bar);
    Changed(*bar);
    return bar;
}

void BarSet::Delete(const BarPointer& bar) {
    if (bar->builtIn) InvalidArgument();
    std::erase(bars_, bar);
    if (!bar->temporary && store_ != nullptr) store_->Remove(kind_, bar->name);
    Retire(bar.get());
    for (const ControlPointer& control : bar->controls) Retire(control.get());
    if (view_ != nullptr) view_->BarsChanged();
}

BarSet::ControlPointer BarSet::AddControl(const BarPointer& bar, long type, long id, size_t before, bool temporary) {
    if (!IsControlType(type)) InvalidArgument();
    if (before > bar->controls.size() + 1) InvalidArgument();
    const auto control = std::make_shared<BarControl>();
    control->type = type;
    control->id = id;
    control->temporary = temporary;
    const auto place = before == 0 ? bar->controls.size() : before - 1;
    bar->controls.insert(bar->controls.begin() + static_cast<std::ptrdiff_t>(place), control);
    Changed(*bar);
    return control;
}

void BarSet::Delete(const BarPointer& bar, const ControlPointer& control) {
    std::erase(bar->controls, control);
    Retire(control.get());
    Changed(*bar);
}

void BarSet::Changed(const Bar& bar) {
    if (!bar.temporary && store_ != nullptr) store_->Update(kind_, bar);
    if (view_ != nullptr) view_->BarsChanged();
}

void BarSet::Changed(const BarControl& control) {
    for (const BarPointer& bar : bars_) {
        const bool mine = std::any_of(bar->controls.begin(), bar->controls.end(),
                                      [&](const ControlPointer& other) { return other.get() == &control; });
        if (mine) return Changed(*bar);
    }
}

size_t BarSet::Raise(const BarControl& control, const std::function<void(AutomationObject&)>& fire) const {
    std::vector<std::shared_ptr<AutomationObject>> objects;  // a sink may fetch or release others
    for (const Published& entry : published_) {
        if (entry.subject != &control) continue;
        if (auto object = entry.object.lock()) objects.push_back(std::move(object));
    }
    size_t sinks = 0;
    for (const auto& object : objects) {
        if (object->Sinks() == 0 || object->IsRetired()) continue;
        sinks += object->Sinks();
        fire(*object);
    }
    return sinks;
}

void BarSet::Say(const std::wstring& line) const {
    const auto listener = listener_;
    if (listener) listener(line);
}

void BarSet::RaiseClick(const ControlPointer& control) {
    const auto self = shared_from_this();  // a sink may close the window
    const std::wstring caption = control->caption;
    VARIANT_BOOL cancelDefault = VARIANT_FALSE;
    const size_t sinks = Raise(*control, [&](AutomationObject& object) {
        object.Fire(kCommandBarButtonEvents, kClickEvent,
                    {HandOut(object.shared_from_this()), ByReference(cancelDefault)});
    });
    const bool cancelled = cancelDefault != VARIANT_FALSE;
    Say(L"Click \"" + caption + L"\" sinks=" + std::to_wstring(sinks) + (cancelled ? L" cancelled" : L""));
}

void BarSet::RaiseChange(const ControlPointer& control) {
    const auto self = shared_from_this();
    const std::wstring line = L"Change \"" + control->caption + L"\" text=\"" + control->text + L"\" sinks=";
    const size_t sinks = Raise(*control, [&](AutomationObject& object) {
        object.Fire(kCommandBarComboBoxEvents, kChangeEvent, {HandOut(object.shared_from_this())});
    });
    Say(line + std::to_wstring(sinks));
}

std::shared_ptr<AutomationObject> BarSet::CommandBars() { return MakeCommandBars(shared_from_this()); }

void BarSet::Register(const std::shared_ptr<AutomationObject>& object, const void* subject) {
    std::erase_if(published_, [](const Published& entry) { return entry.object.expired(); });
    published_.push_back({object, subject});
}

void BarSet::Retire(const void* subject) {
    for (const Published& entry : published_) {
        if (entry.subject != subject) continue;
        if (const auto object = entry.object.lock()) object->Retire();
    }
}

void BarSet::Close() {
    store_ = nullptr;
    view_ = nullptr;
    listener_ = nullptr;
    for (const Published& entry : published_)
        if (const auto object = entry.object.lock()) object->Retire();
}

}  // namespace beacon::standin
