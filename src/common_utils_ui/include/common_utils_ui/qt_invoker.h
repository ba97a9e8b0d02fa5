#pragma once

#include <common/utils/callable.h>
#include <diagnostics/check.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vdi::common_utils_ui {

// Runs a member function of T on the Qt main thread. Made on the stack for one call; does not own
// the object.
//
// Called on the main thread (or with no QCoreApplication at all), Invoke calls at once. From any
// other thread it takes a guard from the object, posts the call to the QCoreApplication queue and
// returns without waiting; the main thread then makes the call only if the guard says the object
// still lives. A posted call that never runs (the queue is destroyed) is dropped with its guard.
template <typename T>
class QtInvoker {
    static_assert(std::is_base_of_v<common::utils::ICallable, T>, "T must derive from ICallable");

public:
    explicit QtInvoker(T* object) : m_object(object) {
        HCA_CHECK(m_object != nullptr) << "Object is nullptr!";
    }

    template <typename F, typename... Args>
    void Invoke(F&& memberFunction, Args&&... args) {
        auto* app = QCoreApplication::instance();
        if (app == nullptr || QThread::currentThread() == app->thread()) {
            (m_object->*memberFunction)(std::forward<Args>(args)...);
            return;
        }

        // The functor must be copyable for invokeMethod, so the unique guard travels in a
        // shared_ptr and is taken out when the call runs.
        auto guard =
            std::make_shared<std::unique_ptr<common::utils::ICallableGuard>>(m_object->GetGuardView());
        QMetaObject::invokeMethod(
            app,
            [guard, object = m_object, function = std::forward<F>(memberFunction),
             arguments = std::make_tuple(std::forward<Args>(args)...)]() mutable {
                std::unique_ptr<common::utils::ICallableGuard> taken = std::move(*guard);
                if (!taken) {
                    return;
                }
                if (!taken->IsNull()) {
                    std::apply(
                        [&](auto&&... unpacked) {
                            (object->*function)(std::forward<decltype(unpacked)>(unpacked)...);
                        },
                        std::move(arguments));
                }
            },
            Qt::QueuedConnection);
    }

private:
    T* m_object;
};

}  // namespace vdi::common_utils_ui
