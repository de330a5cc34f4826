#pragma once

#include "automation/BusNames.h"
#include "firmware/colDefTables.h"
#include "platform/PlatformFailure.h"

#include <QByteArray>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

#include <concepts>
#include <cstdint>
#include <limits>
#include <memory>
#include <type_traits>
#include <typeindex>
#include <variant>
#include <vector>

namespace fldc {

/// A published object of any class.
struct AnyObject {
    std::type_index type;
    std::shared_ptr<void> object;
};

/// Objects and their paths, for arguments and results that are objects.
class IObjectPaths {
public:
    virtual ~IObjectPaths() = default;
    /// Path of @p object, which @p client holds from now on.
    [[nodiscard]] virtual QString pathOf(const AnyObject& object, const QString& client) = 0;
    /// The object at a path. Throws BusError for a path where no object is, PlatformFailure (type
    /// mismatch) for one of another class.
    [[nodiscard]] virtual std::shared_ptr<void> objectAt(const QString& path,
                                                         std::type_index type) = 0;
};

/// The call that is being served.
struct Call {
    IObjectPaths& objects;
    QString client; ///< unique name on the bus
};

/// Position or key of an item.
using IndexOrKey = std::variant<std::int32_t, QString>;

/// A DataDefinition as it goes over the bus.
struct DefinitionRecord {
    QString address;
    int length = 0;
    QDBusObjectPath datablocks;
};

/// A serial port as it goes over the bus.
struct PortRecord {
    QString name; ///< as SetPort takes it
    QString device;
    QString description;
    QString serialNumber; ///< of the USB adapter
    bool usable = false;
};

/// Values of properties by interface, and that by object.
using InterfaceValues = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, InterfaceValues>;

/// How values of type T go over the bus: their type signature and the conversions. fromBus() throws
/// PlatformFailure: type mismatch, or overflow for a number that T does not hold.
template <class T>
struct BusType;

/// The whole number of any width that @p value holds.
[[nodiscard]] qint64 wholeNumber(const QVariant& value);

template <std::signed_integral T>
struct BusType<T> {
    static constexpr QLatin1StringView signature{sizeof(T) == 2 ? "n" : "i"};
    static QVariant toBus(T value, const Call&) { return QVariant::fromValue(value); }
    static T fromBus(const QVariant& value, const Call&)
    {
        const qint64 number = wholeNumber(value);
        if (number < std::numeric_limits<T>::min() || number > std::numeric_limits<T>::max())
            throw PlatformFailure(FailureNumber::Overflow);
        return static_cast<T>(number);
    }
};

template <class T>
requires std::is_enum_v<T>
struct BusType<T> {
    using Number = BusType<std::underlying_type_t<T>>;
    static constexpr QLatin1StringView signature = Number::signature;
    static QVariant toBus(T value, const Call& call) { return Number::toBus(value, call); }
    static T fromBus(const QVariant& value, const Call& call)
    {
        return static_cast<T>(Number::fromBus(value, call));
    }
};

/// Types that Qt itself sends as they are.
template <class T>
struct PlainBusType {
    static QVariant toBus(const T& value, const Call&) { return QVariant::fromValue(value); }
    static T fromBus(const QVariant& value, const Call&)
    {
        if (value.metaType() != QMetaType::fromType<T>())
            throw PlatformFailure(FailureNumber::TypeMismatch);
        return value.value<T>();
    }
};

template <>
struct BusType<bool> : PlainBusType<bool> {
    static constexpr QLatin1StringView signature{"b"};
};

template <>
struct BusType<QString> : PlainBusType<QString> {
    static constexpr QLatin1StringView signature{"s"};
};

template <>
struct BusType<double> : PlainBusType<double> {
    static constexpr QLatin1StringView signature{"d"};
};

template <>
struct BusType<quint32> : PlainBusType<quint32> {
    static constexpr QLatin1StringView signature{"u"};
};

template <>
struct BusType<QList<PortRecord>> : PlainBusType<QList<PortRecord>> {
    static constexpr QLatin1StringView signature{"a(ssssb)"};
};

template <>
struct BusType<ManagedObjects> : PlainBusType<ManagedObjects> {
    static constexpr QLatin1StringView signature{"a{oa{sa{sv}}}"};
};

template <>
struct BusType<QByteArray> : PlainBusType<QByteArray> {
    static constexpr QLatin1StringView signature{"ay"};
};

template <>
struct BusType<QDBusObjectPath> : PlainBusType<QDBusObjectPath> {
    static constexpr QLatin1StringView signature{"o"};
};

template <>
struct BusType<IndexOrKey> {
    static constexpr QLatin1StringView signature{"v"};
    static IndexOrKey fromBus(const QVariant& value, const Call& call)
    {
        const QVariant content = value.value<QDBusVariant>().variant();
        if (content.metaType() == QMetaType::fromType<QString>())
            return content.toString();
        return BusType<std::int32_t>::fromBus(content, call);
    }
};

/// Objects go as their paths; "/" is none.
template <class T>
struct BusType<std::shared_ptr<T>> {
    static constexpr QLatin1StringView signature{"o"};
    static QDBusObjectPath path(const std::shared_ptr<T>& object, const Call& call)
    {
        return QDBusObjectPath(object ? call.objects.pathOf({typeid(T), object}, call.client)
                                      : QStringLiteral("/"));
    }
    static QVariant toBus(const std::shared_ptr<T>& object, const Call& call)
    {
        return QVariant::fromValue(path(object, call));
    }
    static std::shared_ptr<T> fromBus(const QVariant& value, const Call& call)
    {
        const QString path = BusType<QDBusObjectPath>::fromBus(value, call).path();
        if (path == QLatin1String("/"))
            return nullptr;
        return std::static_pointer_cast<T>(call.objects.objectAt(path, typeid(T)));
    }
};

template <class T>
struct BusType<std::vector<std::shared_ptr<T>>> {
    static constexpr QLatin1StringView signature{"ao"};
    static QVariant toBus(const std::vector<std::shared_ptr<T>>& objects, const Call& call)
    {
        QList<QDBusObjectPath> paths;
        for (const auto& object : objects)
            paths.append(BusType<std::shared_ptr<T>>::path(object, call));
        return QVariant::fromValue(paths);
    }
};

template <>
struct BusType<DataDefinition> {
    static constexpr QLatin1StringView signature{"(sio)"};
    static QVariant toBus(const DataDefinition& definition, const Call& call)
    {
        return QVariant::fromValue(DefinitionRecord{
            definition.Address, definition.Length,
            BusType<std::shared_ptr<colDataBlocks>>::path(definition.Datablocks, call)});
    }
};

} // namespace fldc

Q_DECLARE_METATYPE(fldc::DefinitionRecord)
Q_DECLARE_METATYPE(fldc::PortRecord)
