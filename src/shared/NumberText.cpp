#include "shared/NumberText.h"

#include "platform/PlatformFailure.h"

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <limits>

#include <QString>

namespace fldc {

namespace {

// Digits with at most one decimal point among or beside them, after an optional sign.
bool looksLikeNumber(QStringView text)
{
    if (text.startsWith(u'+') || text.startsWith(u'-'))
        text = text.sliced(1);
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    const auto digits = std::ranges::count_if(text, isDigit);
    const auto points = std::ranges::count(text, QChar(u'.'));
    return digits > 0 && points <= 1 && digits + points == text.size();
}

} // namespace

std::optional<std::int32_t> readNumber(QStringView text)
{
    text = text.trimmed();
    if (!looksLikeNumber(text))
        return std::nullopt;
    // nearbyint rounds halves to even in the default rounding mode, which nothing here changes.
    const double value = std::nearbyint(text.toDouble());
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::int32_t>(value);
}

std::int16_t toInt16(QStringView text)
{
    const auto value = readNumber(text);
    if (!value)
        throw PlatformFailure(looksLikeNumber(text.trimmed()) ? FailureNumber::Overflow
                                                              : FailureNumber::TypeMismatch);
    if (*value < std::numeric_limits<std::int16_t>::min() ||
        *value > std::numeric_limits<std::int16_t>::max())
        throw PlatformFailure(FailureNumber::Overflow);
    return static_cast<std::int16_t>(*value);
}

std::int32_t divideRounded(std::int64_t numerator, std::int64_t denominator)
{
    const std::int64_t whole = numerator / denominator;
    const std::int64_t twiceRest = 2 * (numerator % denominator);
    const bool up = twiceRest > denominator || (twiceRest == denominator && whole % 2 != 0);
    return static_cast<std::int32_t>(whole + (up ? 1 : 0));
}

QString counted(std::int64_t count, QStringView noun)
{
    return QString::number(count) + u' ' + noun + (count == 1 ? QStringView() : u"s");
}

} // namespace fldc
