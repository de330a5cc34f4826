#include "automation/ObjectTable.h"

#include "automation/BoundClass.h"

namespace fldc {

QString ObjectTable::publish(const BoundClass& bound, const std::shared_ptr<void>& object,
                             const QString& client)
{
    const auto known = m_paths.constFind({client, object.get()});
    if (known != m_paths.constEnd()) {
        ++m_objects[*known].references;
        return *known;
    }
    return publishNew(bound, client, [&](const QString&) { return object; });
}

const PublishedObject* ObjectTable::find(const QString& path) const
{
    const auto found = m_objects.constFind(path);
    return found == m_objects.constEnd() ? nullptr : &*found;
}

QSet<QString> ObjectTable::children(const QString& path) const
{
    const QString folder = path + u'/';
    QSet<QString> names;
    for (auto object = m_objects.lowerBound(folder);
         object != m_objects.end() && object.key().startsWith(folder); ++object)
        names.insert(object.key().sliced(folder.size()).section(u'/', 0, 0));
    return names;
}

std::optional<PublishedObject> ObjectTable::release(const QString& path)
{
    const auto found = m_objects.find(path);
    if (found == m_objects.end() || --found->references > 0)
        return std::nullopt;
    return remove(path);
}

PublishedObject ObjectTable::remove(const QString& path)
{
    const PublishedObject removed = m_objects.take(path);
    m_paths.remove({removed.client, removed.object.get()});
    m_listener.gone(path, removed);
    return removed;
}

std::vector<PublishedObject> ObjectTable::releaseAll(const QString& client)
{
    std::vector<PublishedObject> released;
    const QStringList paths = m_objects.keys();
    for (const QString& path : paths) {
        if (m_objects.value(path).client == client)
            released.push_back(remove(path));
    }
    return released;
}

QString ObjectTable::newPath(const BoundClass& bound)
{
    return classPath(bound.name()) + u'/' + QString::number(++m_latestNumber[bound.name()]);
}

void ObjectTable::insert(const QString& path, const PublishedObject& object)
{
    m_objects.insert(path, object);
    m_paths.insert({object.client, object.object.get()}, path);
    m_listener.came(path, object);
}

} // namespace fldc
