#pragma once

#include <chrono>

/// How long an operation runs before a progress dialog opens: shorter ones finish without one.
inline constexpr std::chrono::milliseconds kProgressDialogDelay{300};
