#pragma once

#include <type_traits>
#include <utility>

/// Calls into code that is not the host's; what it throws ends here.
template <class Call>
auto guarded(std::invoke_result_t<Call> otherwise, Call&& call) noexcept {
    try {
        return std::forward<Call>(call)();
    } catch (...) {
        return otherwise;
    }
}
