#pragma once

#include <type_traits>
#include <utility>

/// Calls foreign code (blocks, sources, sinks) and catches its exceptions, one of which would end the program
/// if it escaped from the chain's thread. Returns fallback after an exception.
template <class Call>
auto guardedCall(std::invoke_result_t<Call> fallback, Call&& call) noexcept {
    try {
        return std::forward<Call>(call)();
    } catch (...) {
        return fallback;
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
