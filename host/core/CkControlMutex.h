#pragma once

#include <QtGlobal>
#include <condition_variable>
#include <mutex>
#include <thread>

/// A fair (FIFO) recursive mutex, implemented as a ticket lock. std::recursive_mutex makes no promise about
/// the order of waiting threads: one that restarts a chain in a loop could starve the others.
class CkControlMutex {
public:
    void lock() {
        std::unique_lock guard(m_mutex);
        if (m_depth > 0 && m_owner == std::this_thread::get_id()) {
            ++m_depth;
            return;
        }
        const quint64 ticket = m_nextTicket++;
        m_served.wait(guard, [&] { return m_serving == ticket; });
        m_owner = std::this_thread::get_id();
        m_depth = 1;
    }

    void unlock() {
        const std::lock_guard guard(m_mutex);
        if (--m_depth == 0) {
            m_owner = {};
            ++m_serving;
            m_served.notify_all();
        }
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_served;
    std::thread::id m_owner;
    quint32 m_depth = 0;
    quint64 m_nextTicket = 0;
    quint64 m_serving = 0;
};
