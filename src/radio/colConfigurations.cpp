#include "radio/colConfigurations.h"

#include "shared/HexText.h"

#include <algorithm>

namespace fldc {

namespace {

constexpr qsizetype charDigits = 4;
constexpr qsizetype fieldDigits = 12;  // address and status
constexpr qsizetype networkDigits = 4; // network and device number

struct Parts {
    QStringView product;
    QStringView fields; ///< address, status, and perhaps network and device number
};

// A text too short for the fields has none. A terminator inside the address and status of a text
// without one is told by its place: behind the real terminator stand at least the fields.
Parts split(QStringView data)
{
    for (qsizetype i = 0; i + charDigits + fieldDigits <= data.size(); i += charDigits) {
        if (data.sliced(i, charDigits) == u"0000")
            return {data.first(i), data.sliced(i + charDigits)};
    }
    if (data.size() < fieldDigits)
        throw PlatformFailure(FailureNumber::InvalidArgument);
    return {data.chopped(fieldDigits), data.last(fieldDigits)};
}

QString decodeProduct(QStringView digits)
{
    QString text;
    for (qsizetype i = 0; i < digits.size(); i += charDigits) {
        const std::int32_t code = hexToInt(digits.mid(i, charDigits));
        if (code > 0xFF)
            throw PlatformFailure(FailureNumber::InvalidArgument);
        text.append(QChar(static_cast<char16_t>(code)));
    }
    return text;
}

} // namespace

std::shared_ptr<clsConfiguration> colConfigurations::Add(const QString& data,
                                                         const QString& /*sKey*/)
{
    const Parts parts = split(data);
    const auto configuration = std::make_shared<clsConfiguration>();
    configuration->setProductID(decodeProduct(parts.product));
    configuration->setConfigurationAddress(hexToInt(parts.fields.mid(0, 8)));
    configuration->setStatus(hexToInt(parts.fields.mid(8, 4)));
    const QStringView numbers = parts.fields.mid(fieldDigits);
    if (!numbers.isEmpty()) {
        if (numbers.size() < networkDigits)
            throw PlatformFailure(FailureNumber::TypeMismatch);
        configuration->setNetWorkID(static_cast<std::int16_t>(hexToInt(numbers.mid(0, 2))));
        configuration->setDeviceID(static_cast<std::int16_t>(hexToInt(numbers.mid(2, 2))));
    }
    m_configurations.add(configuration);
    return configuration;
}

bool colConfigurations::AllConfigNetworksZero() const
{
    return std::ranges::all_of(m_configurations.items(),
                               [](const auto& each) { return each->NetWorkID() == 0; });
}

} // namespace fldc
