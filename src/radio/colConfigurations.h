#pragma once

#include "radio/clsConfiguration.h"
#include "shared/KeyedCollection.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace fldc {

/// The radio's configurations in the order in which it reports them. Positions count from 1; one
/// that is not there throws PlatformFailure (invalid argument, number 5).
class colConfigurations {
public:
    /// Decodes the configuration text of one configuration and appends it. @p data, in hexadecimal
    /// digits: the product identifier (4 per character), 0000, address (8), status (4), and where
    /// the radio has networks its network (2) and device number (2). @p sKey is not used.
    /// Throws PlatformFailure for text that can't be decoded, and then appends nothing.
    std::shared_ptr<clsConfiguration> Add(const QString& data, const QString& sKey);
    [[nodiscard]] std::shared_ptr<clsConfiguration> Item(std::int32_t position) const
    {
        return m_configurations.item(position);
    }
    [[nodiscard]] std::int32_t Count() const { return m_configurations.count(); }
    void Remove(std::int32_t position) { m_configurations.remove(position); }
    /// The configurations in order, as a copy.
    [[nodiscard]] std::vector<std::shared_ptr<clsConfiguration>> items() const
    {
        return m_configurations.items();
    }
    /// Whether the radio's report was read to its end. Until then positions mean nothing.
    [[nodiscard]] bool complete() const { return m_complete; }
    void setComplete() { m_complete = true; }
    /// True when none has a network number other than 0.
    [[nodiscard]] bool AllConfigNetworksZero() const;

private:
    KeyedCollection<clsConfiguration> m_configurations;
    bool m_complete = false;
};

} // namespace fldc
