#pragma once

#include "automation/BusValue.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace fldc {

class BoundClass;

/// An object on the bus and the client that holds it.
struct PublishedObject {
    const BoundClass* bound = nullptr;
    std::shared_ptr<void> object;
    QString client;
};

/// The objects that clients hold, by path: /com/kelvane/RV4100_FLDC_EXE/<class>/<number>. Numbers
/// are not used again.
///
/// An object that two clients hold has a path for each, so that one of them can let go of it alone.
/// The table keeps the objects alive; who takes one out of it decides when it goes.
class ObjectTable {
public:
    /// Path of @p object for @p client: the one it has, or a new one.
    QString publish(const BoundClass& bound, const std::shared_ptr<void>& object,
                    const QString& client);
    /// The same with the path made before the object, which @p make is given.
    template <class Make>
    QString publishNew(const BoundClass& bound, const QString& client, const Make& make)
    {
        const QString path = newPath(bound);
        insert(path, {&bound, make(path), client});
        return path;
    }

    [[nodiscard]] const PublishedObject* find(const QString& path) const;
    /// Names of what lies directly below @p path.
    [[nodiscard]] QSet<QString> children(const QString& path) const;
    [[nodiscard]] bool isEmpty() const { return m_objects.isEmpty(); }

    /// Takes the object off the bus; nothing when none is at @p path.
    std::optional<PublishedObject> release(const QString& path);
    /// Takes everything that @p client holds off the bus.
    std::vector<PublishedObject> releaseAll(const QString& client);
    /// Every object, whoever holds it.
    [[nodiscard]] QList<PublishedObject> all() const { return m_objects.values(); }

private:
    using Identity = std::pair<QString, void*>; // client and object

    QString newPath(const BoundClass& bound);
    void insert(const QString& path, const PublishedObject& object);

    QMap<QString, PublishedObject> m_objects;
    QMap<Identity, QString> m_paths;
    QMap<QString, int> m_latestNumber; // by class
};

} // namespace fldc
