#include <common_utils_ui/qt_callable_guard.h>

namespace vdi::common_utils_ui {

QtCallableGuard::QtCallableGuard(const QObject* object) : m_object(object) {}

bool QtCallableGuard::IsNull() const {
    return m_object.isNull();
}

}  // namespace vdi::common_utils_ui
