// Bytes, big-endian words and their hexadecimal text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace simulator {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

/// Append the low 16 or all 32 bits of `value`, high byte first: every number on the line is
/// big-endian.
void append16(Bytes& bytes, std::uint32_t value);
void append32(Bytes& bytes, std::uint32_t value);
/// The words one after the other, high byte first.
Bytes wordsToBytes(std::initializer_list<std::uint16_t> words);

/// The big-endian value at `offset`, which must leave room for it.
std::uint16_t wordAt(ByteView bytes, std::size_t offset);
std::uint32_t longAt(ByteView bytes, std::size_t offset);

/// 65535 minus the sum, modulo 65536, of the bytes taken as big-endian words. The number of bytes
/// is even. Frames and records both end with it.
std::uint16_t checksum(ByteView bytes);

/// `value` with at least `digits` upper-case hexadecimal digits.
std::string hex(std::uint32_t value, int digits);

/// "30 01 00 60"; long sequences are shortened in the middle and end with their length.
std::string hexText(ByteView bytes);

/// The characters of 16-bit character codes; codes above 255 become '?'.
std::string textOfWords(ByteView bytes);

} // namespace simulator
