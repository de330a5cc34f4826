#pragma once

#include <QLatin1StringView>
#include <QString>

namespace fldc {

// Names on the bus; every object path and interface of the service begins with them.
inline constexpr QLatin1StringView busName("com.kelvane.RV4100_FLDC_EXE");
inline constexpr QLatin1StringView rootPath("/com/kelvane/RV4100_FLDC_EXE");
inline constexpr QLatin1StringView managerClass("clsDLManager");
inline constexpr QLatin1StringView objectManager("org.freedesktop.DBus.ObjectManager");
inline constexpr QLatin1StringView propertiesInterface("org.freedesktop.DBus.Properties");

/// Full name of the interface @p name of the type library.
[[nodiscard]] inline QString interfaceName(QLatin1StringView name)
{
    return busName + QLatin1Char('.') + name;
}

/// Path of the class @p name: the folder of its instances and, for the manager, the global object.
[[nodiscard]] inline QString classPath(QLatin1StringView name)
{
    return rootPath + QLatin1Char('/') + name;
}

// Errors that a call is answered with, apart from the bus's own.
inline constexpr QLatin1StringView failureError("com.kelvane.RV4100_FLDC_EXE.Error.Failure");
inline constexpr QLatin1StringView busyError("com.kelvane.RV4100_FLDC_EXE.Error.Busy");
inline constexpr QLatin1StringView accessDenied("org.freedesktop.DBus.Error.AccessDenied");
inline constexpr QLatin1StringView invalidArguments("org.freedesktop.DBus.Error.InvalidArgs");
inline constexpr QLatin1StringView propertyReadOnly("org.freedesktop.DBus.Error.PropertyReadOnly");
inline constexpr QLatin1StringView unknownInterface("org.freedesktop.DBus.Error.UnknownInterface");
inline constexpr QLatin1StringView unknownMethod("org.freedesktop.DBus.Error.UnknownMethod");
inline constexpr QLatin1StringView unknownObject("org.freedesktop.DBus.Error.UnknownObject");
inline constexpr QLatin1StringView unknownProperty("org.freedesktop.DBus.Error.UnknownProperty");

/// Thrown to answer the present call with an error. A PlatformFailure is answered with failureError
/// and "number: description".
struct BusError {
    QLatin1StringView name;
    QString text;
};

/// Text of a client, short enough for an error message.
[[nodiscard]] inline QString excerpt(const QString& text)
{
    constexpr qsizetype limit = 100;
    return text.size() <= limit ? text : text.first(limit) + QLatin1String("...");
}

} // namespace fldc
