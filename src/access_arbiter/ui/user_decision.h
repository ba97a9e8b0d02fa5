#pragma once

// The user's answer to an access request, shared by the dialog (QML and C++) and the IPC side.
// On the wire the value travels as one byte of the same number.

#include <QObject>

#include <cstdint>

namespace access_arbiter::ui::mode {
// The namespace carries its own Qt meta-object, so that the dialog document can name the values
// (registered there as the uncreatable type "UserDecision").
Q_NAMESPACE

enum class UserDecision : std::int32_t {
    Decline = 0,  // also the answer of a request for which no value was ever written
    Approve = 1,
};
Q_ENUM_NS(UserDecision)

}  // namespace access_arbiter::ui::mode
