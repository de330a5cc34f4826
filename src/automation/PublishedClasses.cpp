#include "automation/PublishedClasses.h"

#include "firmware/clsDataBlock.h"
#include "firmware/clsDefinitionTable.h"
#include "radio/clsRadio.h"

#include <QDBusArgument>
#include <QDBusMetaType>

namespace fldc {

QDBusArgument& operator<<(QDBusArgument& argument, const DefinitionRecord& record)
{
    argument.beginStructure();
    argument << record.address << record.length << record.datablocks;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DefinitionRecord& record)
{
    argument.beginStructure();
    argument >> record.address >> record.length >> record.datablocks;
    argument.endStructure();
    return argument;
}

namespace {

template <class T>
BoundClass classOf(const char* name)
{
    return BoundClass::of<T>(QLatin1StringView(name),
                             interfaceName(QLatin1StringView("_")) + QLatin1StringView(name));
}

template <class T>
std::shared_ptr<void> make()
{
    return std::make_shared<T>();
}

BoundClass radioClass()
{
    return classOf<clsRadio>("clsRadio")
        .creatable(make<clsRadio>)
        .property("FlashBlocks", &clsRadio::FlashBlocks, &clsRadio::setFlashBlocks)
        .property("Configurations", &clsRadio::Configurations, &clsRadio::setConfigurations);
}

BoundClass flashBlocksClass()
{
    using Blocks = colFlashBlocks;
    return classOf<Blocks>("colFlashBlocks")
        .method("FindBlock", &Blocks::FindBlock)
        .method("Add", &Blocks::Add)
        .method("Item",
                [](Blocks& blocks, const IndexOrKey& at) {
                    return std::visit([&](const auto& item) { return blocks.Item(item); }, at);
                })
        .property("Count", &Blocks::Count)
        .method("Remove",
                [](Blocks& blocks, const IndexOrKey& at) {
                    std::visit([&](const auto& item) { blocks.Remove(item); }, at);
                })
        .method("NewEnum", &Blocks::items);
}

BoundClass flashBlockClass()
{
    using Block = clsFlashBlock;
    return classOf<Block>("clsFlashBlock")
        .property("Length", &Block::Length, &Block::setLength)
        .property("StartAddress", &Block::StartAddress, &Block::setStartAddress)
        .property("ID", &Block::ID, &Block::setID);
}

// Configurations have no keys: any text is an unknown one.
std::int32_t positionOf(const IndexOrKey& at)
{
    if (const auto* position = std::get_if<std::int32_t>(&at))
        return *position;
    throw PlatformFailure(FailureNumber::InvalidArgument);
}

BoundClass configurationsClass()
{
    using Configurations = colConfigurations;
    return classOf<Configurations>("colConfigurations")
        .method("Add", &Configurations::Add)
        .method("Item", [](Configurations& list,
                           const IndexOrKey& at) { return list.Item(positionOf(at)); })
        .property("Count", &Configurations::Count)
        .method("Remove",
                [](Configurations& list, const IndexOrKey& at) { list.Remove(positionOf(at)); })
        .method("NewEnum", &Configurations::items)
        .method("AllConfigNetworksZero", &Configurations::AllConfigNetworksZero);
}

BoundClass configurationClass()
{
    using Item = clsConfiguration;
    return classOf<Item>("clsConfiguration")
        .property("Status", &Item::Status, &Item::setStatus)
        .property("ConfigurationAddress", &Item::ConfigurationAddress,
                  &Item::setConfigurationAddress)
        .property("ProductID", &Item::ProductID, &Item::setProductID)
        .property("NetWorkID", &Item::NetWorkID, &Item::setNetWorkID)
        .property("DeviceID", &Item::DeviceID, &Item::setDeviceID)
        .property("MemoryDeviceID", &Item::MemoryDeviceID, &Item::setMemoryDeviceID)
        .property("blnCanBeErased", &Item::blnCanBeErased, &Item::setBlnCanBeErased)
        .property("ComponentType", &Item::ComponentType, &Item::setComponentType)
        .property("HardwareString", &Item::HardwareString, &Item::setHardwareString);
}

BoundClass dataBlocksClass()
{
    using Blocks = colDataBlocks;
    return classOf<Blocks>("colDataBlocks")
        .creatable(make<Blocks>)
        .method("Add", [](Blocks& blocks, const QString& strData) { blocks.Add(strData); })
        .method("Item", &Blocks::Item)
        .property("Count", &Blocks::Count)
        .method("GetAllData", &Blocks::GetAllData)
        .method("data", &Blocks::data)
        .property("CompressedCount", &Blocks::CompressedCount);
}

BoundClass definitionTablesClass()
{
    using Tables = colDefTables;
    return classOf<Tables>("colDefTables")
        .method("Add", &Tables::Add)
        .method("Item", &Tables::Item)
        .property("Count", &Tables::Count)
        .method("SetLength", &Tables::SetLength)
        .method("Datablocks", &Tables::Datablocks)
        .method("Address", &Tables::Address)
        .method("Length", &Tables::Length);
}

} // namespace

std::vector<BoundClass> supportingClasses()
{
    qDBusRegisterMetaType<DefinitionRecord>();
    return {radioClass(),
            flashBlocksClass(),
            flashBlockClass(),
            configurationsClass(),
            configurationClass(),
            dataBlocksClass(),
            classOf<clsDataBlock>("clsDataBlock").creatable(make<clsDataBlock>),
            definitionTablesClass(),
            classOf<clsDefinitionTable>("clsDefinitionTable")};
}

} // namespace fldc
