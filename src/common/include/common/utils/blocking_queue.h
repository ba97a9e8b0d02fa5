#pragma once

// An unbounded FIFO with a blocking pop, for handing values from one thread to another.
//
// Any thread may push or pop. A push never waits: the queue is bounded only by memory. A pop waits
// until an element is there, the queue is closed, or its timeout runs out; a timeout of 0 means no
// limit, never a poll. Inside the lock nothing is allocated and no element is copied: a push makes
// its list node before locking and splices it in, a pop splices the node out. Pushes notify after
// unlocking, so a woken pop doesn't run straight into a held mutex.
//
// A closed queue drops pushed values (the push still reports the size and still notifies) and lets a
// pop on an empty queue return 0 at once; elements already queued are still delivered. Nothing in
// production closes a queue; CloseForTesting exists to exercise that path.

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <utility>

namespace fdn::utils {

template <typename T>
class BlockingQueue {
public:
    // How PopImpl takes elements.
    enum class Policy : int {
        TakeOne = 0,  // one element, the oldest
    };

    BlockingQueue() = default;
    BlockingQueue(const BlockingQueue&) = delete;
    BlockingQueue& operator=(const BlockingQueue&) = delete;

    // Appends `value`; returns the number of queued elements after the call.
    template <typename U>
    unsigned long Push(U&& value) {
        std::list<T> node;
        node.emplace_back(std::forward<U>(value));

        unsigned long size = 0;
        {
            std::lock_guard lock(m_mutex);
            if (!m_closed) {
                m_items.splice(m_items.end(), node);
            }
            size = static_cast<unsigned long>(m_items.size());
        }
        m_notEmpty.notify_all();
        return size;
    }

    // Takes the oldest element into `out`, waiting at most `timeoutMs` (0: without limit).
    // Returns the number of elements taken, 1 or 0; `out` is untouched when 0.
    template <typename U>
    unsigned long Pop(U& out, unsigned int timeoutMs) {
        std::list<T> taken;
        const unsigned long count = PopImpl<Policy::TakeOne>(taken, std::chrono::milliseconds(timeoutMs));
        if (count != 0) {
            out = taken.front();
        }
        return count;
    }

    // Moves elements to the end of `out` according to `P`, waiting as Pop does; returns how many
    // were moved.
    template <Policy P>
    unsigned long PopImpl(std::list<T>& out, std::chrono::milliseconds timeout) {
        static_assert(P == Policy::TakeOne, "only TakeOne is implemented");

        std::unique_lock lock(m_mutex);
        if (m_items.empty() && m_closed) {
            return 0;
        }
        if (m_items.empty()) {
            const auto ready = [this] { return !m_items.empty() || m_closed; };
            if (timeout.count() == 0) {
                m_notEmpty.wait(lock, ready);
            } else {
                const auto deadline =
                    std::chrono::steady_clock::now() + std::chrono::nanoseconds(timeout.count() * 1000000);
                m_notEmpty.wait_until(lock, deadline, ready);
            }
        }
        if (m_items.empty()) {
            return 0;
        }
        out.splice(out.end(), m_items, m_items.begin());
        return 1;
    }

    // Closes the queue for good; see the class comment for what that changes.
    void CloseForTesting() {
        {
            std::lock_guard lock(m_mutex);
            m_closed = true;
        }
        m_notEmpty.notify_all();
    }

private:
    std::mutex m_mutex;                         // guards everything below
    std::condition_variable m_notEmpty;         // waited on by pops, signalled by pushes
    std::condition_variable m_secondCondition;  // no operation of this queue waits on it yet
    bool m_closed = false;
    std::list<T> m_items;  // oldest first
};

}  // namespace fdn::utils
