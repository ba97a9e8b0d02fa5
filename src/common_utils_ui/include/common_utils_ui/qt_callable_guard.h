#pragma once

#include <common/utils/callable_guard.h>

#include <QObject>
#include <QPointer>

namespace vdi::common_utils_ui {

// Guards a QObject through a QPointer: IsNull turns true once the object is destroyed.
// May be made on any thread and read on the object's thread afterwards. Does not own the object.
class QtCallableGuard final : public common::utils::ICallableGuard {
public:
    explicit QtCallableGuard(const QObject* object);

    bool IsNull() const override;

private:
    QPointer<const QObject> m_object;
};

}  // namespace vdi::common_utils_ui
