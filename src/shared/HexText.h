#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <optional>

namespace fldc {

// Hex text: two upper-case digits per byte, no separators, no prefix. The value of a digit is read
// without regard to case.

/// Value of one hexadecimal digit, or -1.
[[nodiscard]] constexpr int hexDigit(char16_t character)
{
    if (character >= u'0' && character <= u'9')
        return character - u'0';
    if (character >= u'A' && character <= u'F')
        return character - u'A' + 10;
    if (character >= u'a' && character <= u'f')
        return character - u'a' + 10;
    return -1;
}

/// Appends the two digits of @p byte.
void appendHex(QString& text, std::uint8_t byte);
[[nodiscard]] QString bytesToHex(const QByteArray& bytes);
/// @p value in upper-case digits, padded with zeros to @p width digits; longer values are cut to
/// their last @p width digits.
[[nodiscard]] QString hexNumber(std::uint32_t value, int width);

/// The bytes of @p digits, length / 2 of them. Throws PlatformFailure: invalid argument for an odd
/// number of digits (which byte would the lone one be?), type mismatch for anything but hexadecimal
/// digits.
[[nodiscard]] QByteArray hexToBytes(QStringView digits);
/// The unsigned value of 1 to 8 significant digits; nothing for other text.
[[nodiscard]] std::optional<std::uint32_t> readHex(QStringView digits);
/// As readHex, as 32-bit two's complement (FFFFFFFF is -1). Throws PlatformFailure: type mismatch
/// for text that is not hexadecimal, overflow for more than 8 significant digits.
[[nodiscard]] std::int32_t hexToInt(QStringView digits);

} // namespace fldc
