#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Opens the bytes as a recording and reads it, or, when they begin with a brace, reads them as the text of a
/// page. Empty when every contract held, otherwise the violation: a refusal has a reason and names the file,
/// a frame has the format of its description, every sample of it can be read, a text that was read and
/// written again has the same content.
std::string checkRecording(const uint8_t* bytes, size_t size);
