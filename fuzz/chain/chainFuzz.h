#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Opens the bytes as a chain file, or, when the first one is 128 or more, a file of blocks that they
/// describe. Empty when every contract held, otherwise the violation: a refusal has a reason, names the file
/// and leaves no chain, a chain that was read and written again is the same.
std::string checkChain(const uint8_t* bytes, size_t size);
