#pragma once

#include "outlook/bars/bar_set.h"

namespace beacon::standin {

inline void TakeValue(const CallArguments& arguments, std::wstring& value) { value = arguments.Text(0); }

inline void TakeValue(const CallArguments& arguments, long& value) { value = arguments.Long(0); }

inline void TakeValue(const CallArguments& arguments, bool& value) { value = arguments.Bool(0); }

/// An object that stands for a bar or for a control, and publishes its fields.
template <class Record>
class RecordObject : public AutomationObject {
protected:
    RecordObject(const wchar_t* kind, std::shared_ptr<BarSet> set, std::shared_ptr<Record> record)
        : AutomationObject(kind), set_(std::move(set)), record_(std::move(record)) {}

    /// Values for which `check` is false raise error 5.
    template <class Value>
    void AddField(DISPID member, const wchar_t* name, Value Record::*field, bool (*check)(Value) = nullptr) {
        AddProperty(
            member, name, [this, field] { return _variant_t((*record_).*field); }, Put(field, check));
    }

    void AddField(DISPID member, const wchar_t* name, std::wstring Record::*field) {
        AddProperty(
            member, name, [this, field] { return com::FromText((*record_).*field); }, Put<std::wstring>(field));
    }

    /// What `shown` tells of the place on the screen, as long as the field has no value (0) of its own.
    void AddPlace(DISPID member, const wchar_t* name, long Record::*field, LONG (*shown)(const RECT&),
                  bool (*check)(long) = nullptr) {
        AddProperty(
            member, name,
            [this, field, shown] {
                if ((*record_).*field != 0 || set_->View() == nullptr) return com::FromLong((*record_).*field);
                const std::optional<RECT> place = set_->View()->PlaceOf(*record_);
                return com::FromLong(place ? shown(*place) : 0);
            },
            Put(field, check));
    }

    void Changed() { set_->Changed(*record_); }

    const std::shared_ptr<BarSet> set_;
    const std::shared_ptr<Record> record_;

private:
    template <class Value>
    Setter Put(Value Record::*field, bool (*check)(Value) = nullptr) {
        return [this, field, check](const CallArguments& arguments) {
            Value value{};
            TakeValue(arguments, value);
            if (check != nullptr && !check(value)) InvalidArgument();
            (*record_).*field = value;
            Changed();
        };
    }
};

inline LONG WidthOf(const RECT& place) { return place.right - place.left; }

}  // namespace beacon::standin
