#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Runs one picture operation, or the classifiers, with descriptors, lists and pixels made from the bytes,
/// once per implementation of the kernels. Empty when every contract held, otherwise the violation:
/// implementations agree, a refused call writes nothing, bytes beyond the pixels of a row stay.
std::string checkPicOperation(const uint8_t* bytes, size_t size);
