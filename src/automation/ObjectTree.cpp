#include "automation/ObjectTree.h"

#include "automation/BoundClass.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

namespace fldc {

namespace {

constexpr QLatin1StringView introspectable("org.freedesktop.DBus.Introspectable");

void expectSignature(const QDBusMessage& message, const QString& signature)
{
    if (message.signature() != signature)
        throw BusError{invalidArguments, message.member() +
                                             QStringLiteral(" takes arguments of type \"") +
                                             signature + QStringLiteral("\", not \"") +
                                             excerpt(message.signature()) + u'"'};
}

/// For the life of a call.
class ServedCall {
public:
    ServedCall(IObjectSource& source, const PublishedObject& target) : m_source(source)
    {
        m_source.callBegins(target);
    }
    ~ServedCall() { m_source.callEnds(); }
    ServedCall(const ServedCall&) = delete;
    ServedCall& operator=(const ServedCall&) = delete;

private:
    IObjectSource& m_source;
};

QString failureText(const PlatformFailure& failure)
{
    return QString::number(failure.number()) + QStringLiteral(": ") + failure.description();
}

} // namespace

ObjectTree::ObjectTree(const TypeLibrary& library, IObjectSource& source)
    : m_library(library), m_source(source)
{
}

// Not called: introspection is answered with a whole document below.
QString ObjectTree::introspect(const QString&) const
{
    return {};
}

bool ObjectTree::handleMessage(const QDBusMessage& message, const QDBusConnection& connection)
{
    // A call that came together with this one waits in the same queue, and the event loop that an
    // operation runs in here would sleep over it.
    QCoreApplication::eventDispatcher()->wakeUp();
    QDBusMessage reply;
    try {
        reply = message.createReply(answer(message));
    } catch (const BusError& error) {
        reply = message.createErrorReply(error.name, error.text);
    } catch (...) {
        reply = message.createErrorReply(failureError, failureText(currentFailure()));
    }
    if (message.isReplyRequired())
        connection.send(reply);
    m_source.callServed();
    return true;
}

QVariantList ObjectTree::answer(const QDBusMessage& message)
{
    if (message.interface() == introspectable) {
        if (message.member() != QLatin1String("Introspect"))
            throw BusError{unknownMethod, excerpt(message.member())};
        expectSignature(message, {});
        const BoundClass* bound = m_source.classAt(message.path());
        return {m_library.describe(bound ? bound->interfaces() : QStringList(),
                                   m_source.childrenOf(message.path()))};
    }
    if (message.interface() == propertiesInterface)
        return accessProperty(message);
    return callMethod(message);
}

QVariantList ObjectTree::accessProperty(const QDBusMessage& message)
{
    const bool getsAll = message.member() == QLatin1String("GetAll");
    const bool gets = message.member() == QLatin1String("Get");
    if (!getsAll && !gets && message.member() != QLatin1String("Set"))
        throw BusError{unknownMethod, excerpt(message.member())};
    const char* const signature = getsAll ? "s" : gets ? "ss" : "ssv";
    expectSignature(message, QLatin1String(signature));

    const QVariantList arguments = message.arguments();
    const QString interface = arguments.at(0).toString();
    const PublishedObject target = m_source.objectFor(message.path(), message.service());
    const Call call{m_source, message.service()};
    const bool isEvents = target.bound->eventInterfaces().contains(interface);
    const BoundClass* const bound = isEvents ? target.bound : target.bound->at(interface);
    if (!bound)
        throw BusError{unknownInterface, excerpt(interface)};

    const ServedCall served(m_source, target);
    const auto& offered = bound->properties();
    if (getsAll) {
        QVariantMap values;
        for (auto property = offered.begin(); !isEvents && property != offered.end(); ++property) {
            if (property->get)
                values.insert(property.key(), property->get(target.object.get(), call));
        }
        return {values};
    }

    const QString name = arguments.at(1).toString();
    const auto property = offered.constFind(name);
    if (isEvents || property == offered.constEnd())
        throw BusError{unknownProperty, excerpt(name)};
    if (gets) {
        if (!property->get)
            throw BusError{accessDenied, name + QStringLiteral(" can only be written")};
        const QVariant value = property->get(target.object.get(), call);
        return {QVariant::fromValue(QDBusVariant(value))};
    }
    if (!property->set)
        throw BusError{propertyReadOnly, name + QStringLiteral(" can only be read")};
    property->set(target.object.get(), call, arguments.at(2).value<QDBusVariant>().variant());
    return {};
}

QVariantList ObjectTree::callMethod(const QDBusMessage& message)
{
    const PublishedObject target = m_source.objectFor(message.path(), message.service());
    const BoundClass* const bound = target.bound->at(message.interface());
    if (!bound)
        throw BusError{unknownInterface, excerpt(message.interface())};
    const auto method = bound->methods().constFind(message.member());
    if (method == bound->methods().constEnd())
        throw BusError{unknownMethod, excerpt(message.member())};
    expectSignature(message, method->in);
    const ServedCall served(m_source, target);
    return method->invoke(target.object.get(), {m_source, message.service()}, message.arguments());
}

} // namespace fldc
