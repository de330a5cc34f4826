#pragma once

#include "automation/BusValue.h"
#include "automation/ObjectTable.h"
#include "automation/TypeLibrary.h"

#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>

namespace fldc {

/// What the tree needs to know of the objects.
class IObjectSource : public IObjectPaths {
public:
    /// The object at a path, for a call of @p client. Throws BusError where no object is.
    [[nodiscard]] virtual PublishedObject objectFor(const QString& path, const QString& client) = 0;
    /// Class of the object at a path without making one; nullptr for a path that only has objects
    /// below it. Throws BusError for a path with neither.
    [[nodiscard]] virtual const BoundClass* classAt(const QString& path) const = 0;
    /// Names of what lies directly below a path.
    [[nodiscard]] virtual QStringList childrenOf(const QString& path) const = 0;
    /// Around each call of an object; calls begin and end inside each other.
    virtual void callBegins(const PublishedObject& target) = 0;
    virtual void callEnds() = 0;
    /// After each call, whatever its outcome.
    virtual void callServed() = 0;
    /// The bus itself has ended.
    virtual void busGone() = 0;
};

/// Serves every call to the service's objects: checks it against the type library, runs it and
/// answers with its results or an error.
///
/// A virtual object and no generated adaptors: objects come and go at their own paths by client,
/// a property that can't be read must answer with an error, as must a member that fails, and no
/// exception may reach Qt. Qt's adaptors offer none of these for properties.
class ObjectTree final : public QDBusVirtualObject {
    Q_OBJECT
public:
    ObjectTree(const TypeLibrary& library, IObjectSource& source);

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

public Q_SLOTS:
    void onDisconnected() { m_source.busGone(); }

private:
    [[nodiscard]] QVariantList answer(const QDBusMessage& message);
    [[nodiscard]] QVariantList accessProperty(const QDBusMessage& message);
    [[nodiscard]] QVariantList callMethod(const QDBusMessage& message);

    const TypeLibrary& m_library;
    IObjectSource& m_source;
};

} // namespace fldc
