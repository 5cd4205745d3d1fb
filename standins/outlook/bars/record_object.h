#pragma once

#include "outlook/bars/bar_set.h"

namespace beacon::standin {

inline void TakeValue(const CallArguments& arguments, std::wstring& value) { value = arguments.Text(0); }

inline void TakeValue(const CallArguments& arguments, long& value) { value = arguments.Long(0); }

inline void TakeValue(const CallArguments& arguments, bool& value) { value = arguments.Bool(0); }

inline _variant_t ToVariant(const std::wstring& value) { return com::FromText(value); }

inline _variant_t ToVariant(long value) { return value; }

inline _variant_t ToVariant(bool value) { return value; }

inline LONG WidthOf(const RECT& place) { return place.right - place.left; }

/// The Automation object of a bar or control.
template <class Record>
class RecordObject : public AutomationObject {
protected:
    RecordObject(const wchar_t* kind, std::shared_ptr<BarSet> set, std::shared_ptr<Record> record)
        : AutomationObject(kind), set_(std::move(set)), record_(std::move(record)) {}

    template <class Value>
    void AddReadOnly(DISPID member, const wchar_t* name, Value Record::*field) {
        AddProperty(member, name, [this, field] { return ToVariant((*record_).*field); });
    }

    /// Values for which `check` is false raise error 5.
    template <class Value>
    void AddField(DISPID member, const wchar_t* name, Value Record::*field, bool (*check)(Value) = nullptr) {
        AddProperty(
            member, name, [this, field] { return ToVariant((*record_).*field); }, Put(field, check));
    }

    /// Gives the position on the screen by `shown` while the field is 0.
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

    /// A method without result that changes the record.
    template <class Action>
    void AddAction(DISPID member, const wchar_t* name, UINT needed, UINT most, Action action) {
        AddMethod(member, name, needed, most, [this, action](const CallArguments& arguments) {
            action(arguments);
            set_->Changed(*record_);
            return _variant_t();
        });
    }

    const std::shared_ptr<BarSet> set_;
    const std::shared_ptr<Record> record_;

private:
    template <class Value>
    Setter Put(Value Record::*field, bool (*check)(Value)) {
        return [this, field, check](const CallArguments& arguments) {
            Value value{};
            TakeValue(arguments, value);
            if (check != nullptr && !check(value)) InvalidArgument();
            (*record_).*field = value;
            set_->Changed(*record_);
        };
    }
};

}  // namespace beacon::standin
