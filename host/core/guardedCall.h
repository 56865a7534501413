#pragma once

#include <type_traits>
#include <utility>

/// Calls foreign code (blocks, sources, sinks) and catches its exceptions: one that escaped from the chain's
/// thread would end the program. Returns otherwise after an exception.
template <class Call>
auto guardedCall(std::invoke_result_t<Call> otherwise, Call&& call) noexcept {
    try {
        return std::forward<Call>(call)();
    } catch (...) {
        return otherwise;
    }
}

/// The same for a call without a result.
template <class Call>
requires std::is_void_v<std::invoke_result_t<Call>>
void guardedCall(Call&& call) noexcept {
    try {
        std::forward<Call>(call)();
    } catch (...) {
    }
}
