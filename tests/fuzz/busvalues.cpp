// Values of every type from the bus, taken for every type that a member may want. Each is refused,
// or goes back over the bus as what it was taken for.

#include "Fuzzing.h"
#include "automation/BusValue.h"
#include "radio/clsRadio.h"

using namespace fldc;

namespace {

struct OneObject final : IObjectPaths {
    const std::shared_ptr<clsRadio> radio = std::make_shared<clsRadio>();

    [[nodiscard]] QString pathOf(const AnyObject& object, const QString& /*client*/) override
    {
        EXPECT_EQ(object.object, radio);
        return QStringLiteral("/1");
    }
    [[nodiscard]] std::shared_ptr<void> objectAt(const QString& path, std::type_index type) override
    {
        EXPECT_EQ(type, std::type_index(typeid(clsRadio)));
        return path == u"/1" ? radio : throw PlatformFailure(FailureNumber::InvalidArgument);
    }
};

template <class T>
void take(const QVariant& value, const Call& call)
{
    try {
        const T taken = BusType<T>::fromBus(value, call);
        if constexpr (std::is_same_v<T, std::int16_t> || std::is_same_v<T, std::int32_t>)
            EXPECT_EQ(qint64{taken}, wholeNumber(value));
        if constexpr (!std::is_same_v<T, IndexOrKey>)
            EXPECT_TRUE(BusType<T>::fromBus(BusType<T>::toBus(taken, call), call) == taken);
    } catch (const PlatformFailure&) { // refused
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider fuzz(bytes, size);
    OneObject objects;
    const Call call{objects, {}};
    const auto number = fuzz.ConsumeIntegral<qint64>() >> fuzz.ConsumeIntegralInRange(0, 63);
    const QString text = QString::fromStdString(fuzz.ConsumeRandomLengthString());
    const QDBusObjectPath path(QStringLiteral("/%1").arg(static_cast<quint32>(number)));
    const QVariant values[]{QVariant(),      text,
                            text.toLatin1(), number > 0,
                            number,          static_cast<quint64>(number),
                            qint32(number),  static_cast<quint32>(number),
                            double(number),  QVariant::fromValue(static_cast<qint16>(number)),
                            QStringList(),   QVariant::fromValue(static_cast<quint16>(number)),
                            QVariantMap(),   QVariant::fromValue(static_cast<uchar>(number)),
                            QVariantList(),  QVariant::fromValue(path)};
    for (const QVariant& plain : values) {
        for (const QVariant& value : {plain, QVariant::fromValue(QDBusVariant(plain))}) {
            take<std::int16_t>(value, call);
            take<std::int32_t>(value, call);
            take<quint32>(value, call);
            take<bool>(value, call);
            take<double>(value, call);
            take<QString>(value, call);
            take<QByteArray>(value, call);
            take<IndexOrKey>(value, call);
            take<std::shared_ptr<clsRadio>>(value, call);
        }
    }
    return 0;
}
