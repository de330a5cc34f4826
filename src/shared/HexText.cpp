#include "shared/HexText.h"

#include "platform/PlatformFailure.h"

#include <algorithm>

namespace fldc {

namespace {

constexpr char16_t digitsOf[] = u"0123456789ABCDEF";

bool isHexText(QStringView text)
{
    return !text.isEmpty() &&
           std::ranges::all_of(text, [](QChar c) { return hexDigit(c.unicode()) >= 0; });
}

} // namespace

void appendHex(QString& text, std::uint8_t byte)
{
    text.append(QChar(digitsOf[byte >> 4U]));
    text.append(QChar(digitsOf[byte & 0xFU]));
}

QString bytesToHex(const QByteArray& bytes)
{
    QString text;
    text.reserve(bytes.size() * 2);
    for (const char byte : bytes)
        appendHex(text, static_cast<std::uint8_t>(byte));
    return text;
}

QString hexNumber(std::uint32_t value, int width)
{
    return QString::number(value, 16).toUpper().rightJustified(width, u'0').right(width);
}

QByteArray hexToBytes(QStringView digits)
{
    if (digits.size() % 2 != 0)
        throw PlatformFailure(FailureNumber::InvalidArgument);
    QByteArray bytes;
    bytes.reserve(digits.size() / 2);
    for (qsizetype i = 0; i < digits.size(); i += 2) {
        const int high = hexDigit(digits[i].unicode());
        const int low = hexDigit(digits[i + 1].unicode());
        if (high < 0 || low < 0)
            throw PlatformFailure(FailureNumber::TypeMismatch);
        bytes.append(static_cast<char>(high * 16 + low));
    }
    return bytes;
}

std::optional<std::uint32_t> readHex(QStringView digits)
{
    if (!isHexText(digits))
        return std::nullopt;
    while (digits.size() > 1 && digits.front() == u'0')
        digits = digits.sliced(1);
    if (digits.size() > 8)
        return std::nullopt;
    std::uint32_t value = 0;
    for (const QChar c : digits)
        value = value * 16 + static_cast<std::uint32_t>(hexDigit(c.unicode()));
    return value;
}

std::int32_t hexToInt(QStringView digits)
{
    if (const auto value = readHex(digits))
        return static_cast<std::int32_t>(*value);
    throw PlatformFailure(isHexText(digits) ? FailureNumber::Overflow
                                            : FailureNumber::TypeMismatch);
}

} // namespace fldc
