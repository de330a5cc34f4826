#pragma once

#include "automation/BusValue.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace fldc {

class BoundClass;

/// An object on the bus and the client that holds it.
struct PublishedObject {
    const BoundClass* bound = nullptr;
    std::shared_ptr<void> object;
    QString client;
    int references = 1; ///< that the client holds
};

/// The objects that clients hold, by path: /com/kelvane/RV4100_FLDC_EXE/<class>/<number>. Numbers
/// are not used again.
///
/// An object that two clients hold has a path for each, so that one of them can let go of it alone.
/// The table keeps the objects alive; who takes one out of it decides when it goes.
class ObjectTable {
public:
    /// Told of every object that has come, and of every one that has gone.
    struct Listener {
        std::function<void(const QString& path, const PublishedObject& object)> came;
        std::function<void(const QString& path, const PublishedObject& object)> gone;
    };
    explicit ObjectTable(Listener listener) : m_listener(std::move(listener)) {}

    /// Path of @p object for @p client: the one it has, with one more reference, or a new one.
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

    /// Takes back one reference, and with the last one the object off the bus; nothing when it
    /// stays or none is at @p path.
    std::optional<PublishedObject> release(const QString& path);
    /// Takes everything that @p client holds off the bus.
    std::vector<PublishedObject> releaseAll(const QString& client);
    /// Every object, whoever holds it.
    [[nodiscard]] QList<PublishedObject> all() const { return m_objects.values(); }
    [[nodiscard]] const QMap<QString, PublishedObject>& byPath() const { return m_objects; }

private:
    using Identity = std::pair<QString, void*>; // client and object

    QString newPath(const BoundClass& bound);
    void insert(const QString& path, const PublishedObject& object);
    PublishedObject remove(const QString& path);

    Listener m_listener;
    QMap<QString, PublishedObject> m_objects;
    QMap<Identity, QString> m_paths;
    QMap<QString, int> m_latestNumber; // by class
};

} // namespace fldc
