#pragma once

#include "firmware/clsFile.h"
#include "shared/KeyedCollection.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace fldc {

/// The loaded images in order, each under its Name, compared without regard to case. An unknown key
/// or a position outside 1 to Count fails with PlatformFailure (invalid argument, 5).
class colFiles {
public:
    /// Names the object @p strFileName and appends it. An object that stood under that key goes,
    /// so the key moves to the end.
    void Add(const std::shared_ptr<clsFile>& objNewfile, const QString& strFileName)
    {
        if (!objNewfile)
            throw PlatformFailure(FailureNumber::ObjectNotSet);
        objNewfile->setName(strFileName);
        if (Exists(strFileName))
            Remove(strFileName);
        m_files.add(objNewfile, strFileName);
    }
    [[nodiscard]] std::shared_ptr<clsFile> Item(const QString& strFileName) const
    {
        return m_files.item(strFileName);
    }
    /// By position, from 1.
    [[nodiscard]] std::shared_ptr<clsFile> Item(std::int32_t lngPosition) const
    {
        return m_files.item(lngPosition);
    }
    [[nodiscard]] std::int32_t Count() const { return m_files.count(); }
    void Remove(const QString& strFileName) { m_files.remove(strFileName); }
    /// By position, from 1.
    void Remove(std::int32_t lngPosition) { m_files.remove(lngPosition); }
    /// The objects in order, as a copy: the collection may change while the caller walks them.
    [[nodiscard]] std::vector<std::shared_ptr<clsFile>> items() const { return m_files.items(); }
    /// A name under which an image of the file @p path can be added without taking the place of an
    /// image of another file (names that differ only in case are the same): @p name with the
    /// lowest number from @p first on behind it, where 0 stands for the bare name.
    [[nodiscard]] QString freeName(const QString& name, int first, const QString& path) const
    {
        for (int number = first;; ++number) {
            const QString candidate = number == 0 ? name : name + QString::number(number);
            if (!Exists(candidate) || Item(candidate)->SourcePath() == path)
                return candidate;
        }
    }
    /// True when a file was refused, be there images of it here or not.
    [[nodiscard]] bool hasRejected() const { return m_hasRejected; }
    void setHasRejected() { m_hasRejected = true; }
    /// Never fails.
    [[nodiscard]] bool Exists(const QString& strFile) const { return m_files.contains(strFile); }

private:
    KeyedCollection<clsFile> m_files;
    bool m_hasRejected = false;
};

} // namespace fldc
