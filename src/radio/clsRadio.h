#pragma once

#include "radio/colConfigurations.h"
#include "radio/colFlashBlocks.h"

#include <memory>

namespace fldc {

/// What is known of the one radio that is connected. Never talks to it; queries of the protocol
/// fill it.
class clsRadio {
public:
    [[nodiscard]] std::shared_ptr<colFlashBlocks> FlashBlocks() const { return m_flashBlocks; }
    void setFlashBlocks(std::shared_ptr<colFlashBlocks> blocks)
    {
        m_flashBlocks = std::move(blocks);
    }
    [[nodiscard]] std::shared_ptr<colConfigurations> Configurations() const
    {
        return m_configurations;
    }
    void setConfigurations(std::shared_ptr<colConfigurations> configurations)
    {
        m_configurations = std::move(configurations);
    }

private:
    std::shared_ptr<colFlashBlocks> m_flashBlocks = std::make_shared<colFlashBlocks>();
    std::shared_ptr<colConfigurations> m_configurations = std::make_shared<colConfigurations>();
};

} // namespace fldc
