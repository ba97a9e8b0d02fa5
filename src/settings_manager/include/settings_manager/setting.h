#pragma once
// settings_manager::Setting, one node of a settings tree: the value variant uvc::TValue<Setting>
// (uvc/value.h gives its sixteen alternatives and their wire numbers) followed by the node's own
// Attributes. Children of a list or map are Settings with attributes of their own.
//
//   settings_manager::Setting language = std::string("en-US");
//   if (const auto* text = std::get_if<uvc::IndexString>(&language)) { ... }
//
// A default Setting holds alternative 0 and cleared attributes. The variant may be valueless after a
// throwing assignment, where the standard library allows that (index() then gives
// std::variant_npos, 18446744073709551615); libstdc++ builds these alternatives aside first and never
// leaves them valueless, so the codec's checks for that state guard other libraries. Plain value
// type; not synchronised.

#include <settings_manager/attributes.h>
#include <uvc/value.h>

#include <utility>

namespace settings_manager {

class Setting : public uvc::TValue<Setting> {
public:
    using Value = uvc::TValue<Setting>;
    using Value::Value;
    using Value::operator=;

    Setting() = default;
    Setting(Value value, Attributes attrs) : Value(std::move(value)), attributes(attrs) {}

    Value& GetValue() { return *this; }
    const Value& GetValue() const { return *this; }

    friend bool operator==(const Setting& a, const Setting& b) {
        return a.attributes == b.attributes && a.GetValue() == b.GetValue();
    }

    Attributes attributes;
};

using SettingList = uvc::TList<Setting>;
using SettingMap = uvc::TMap<Setting>;

}  // namespace settings_manager
