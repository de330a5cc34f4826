#pragma once

#include "platform/PlatformFailure.h"

#include <QString>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace fldc {

/// An ordered collection of shared objects with optional unique text keys, compared without regard
/// to case. Items are addressed by 1-based position or by key. An unknown key or a position outside
/// 1 to count() throws PlatformFailure (invalid argument, number 5).
template <class T>
class KeyedCollection {
public:
    using Pointer = std::shared_ptr<T>;

    /// Appends @p item. An empty key means none; a key that is taken throws PlatformFailure
    /// (duplicate key).
    void add(Pointer item, const QString& key = {})
    {
        const QString folded = key.toCaseFolded();
        if (!folded.isEmpty() && find(folded) != m_entries.end())
            throw PlatformFailure(FailureNumber::DuplicateKey);
        m_entries.push_back({folded, std::move(item)});
    }

    [[nodiscard]] Pointer item(std::int32_t position) const { return at(position)->item; }
    [[nodiscard]] Pointer item(const QString& key) const { return at(key)->item; }
    void remove(std::int32_t position) { m_entries.erase(at(position)); }
    void remove(const QString& key) { m_entries.erase(at(key)); }

    [[nodiscard]] bool contains(const QString& key) const
    {
        return !key.isEmpty() && find(key.toCaseFolded()) != m_entries.end();
    }
    [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(m_entries.size()); }

    /// The items in order, as a copy: the collection may change while the caller walks them.
    [[nodiscard]] std::vector<Pointer> items() const
    {
        std::vector<Pointer> all;
        all.reserve(m_entries.size());
        for (const Entry& entry : m_entries)
            all.push_back(entry.item);
        return all;
    }

private:
    struct Entry {
        QString key;
        Pointer item;
    };
    using Position = typename std::vector<Entry>::const_iterator;

    [[nodiscard]] Position find(const QString& foldedKey) const
    {
        return std::ranges::find(m_entries, foldedKey, &Entry::key);
    }
    [[nodiscard]] Position at(std::int32_t position) const
    {
        if (position < 1 || position > count())
            throw PlatformFailure(FailureNumber::InvalidArgument);
        return m_entries.begin() + (position - 1);
    }
    [[nodiscard]] Position at(const QString& key) const
    {
        const Position found = key.isEmpty() ? m_entries.end() : find(key.toCaseFolded());
        if (found == m_entries.end())
            throw PlatformFailure(FailureNumber::InvalidArgument);
        return found;
    }

    std::vector<Entry> m_entries;
};

} // namespace fldc
