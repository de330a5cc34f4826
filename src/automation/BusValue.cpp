#include "automation/BusValue.h"

namespace fldc {

qint64 wholeNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::ULongLong: {
        const qulonglong number = value.toULongLong();
        if (number > static_cast<qulonglong>(std::numeric_limits<qint64>::max()))
            throw PlatformFailure(FailureNumber::Overflow);
        return static_cast<qint64>(number);
    }
    default:
        throw PlatformFailure(FailureNumber::TypeMismatch);
    }
}

} // namespace fldc
