#include "fldc/files/Expectation.h"

#include "certificate/ObjectKinds.h"
#include "fldc/files/InputFiles.h"

#include <QJsonDocument>

#include <algorithm>
#include <tuple>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

std::optional<std::int32_t> numberOf(const QJsonObject& object, QLatin1StringView key)
{
    const QJsonValue value = object[key];
    if (!value.isDouble() || value.toInteger(-1) < 0 || value.toInteger(-1) > INT32_MAX)
        return std::nullopt;
    return static_cast<std::int32_t>(value.toInteger());
}

std::optional<session::Component> componentOf(const QJsonObject& object)
{
    const QJsonValue product = object["product"_L1];
    const auto status = numberOf(object, "status"_L1);
    const auto network = numberOf(object, "network"_L1);
    const auto device = numberOf(object, "device"_L1);
    if (!product.isString() || !status || !network || !device)
        return std::nullopt;
    return session::Component{product.toString(), *status, *network, *device,
                              object["erasable"_L1].toBool()};
}

std::optional<std::vector<session::Component>> componentsOf(const QJsonValue& list)
{
    if (!list.isArray())
        return std::nullopt;
    std::vector<session::Component> components;
    for (const auto& each : list.toArray()) {
        const auto component = componentOf(each.toObject());
        if (!component)
            return std::nullopt;
        components.push_back(*component);
    }
    return components;
}

auto identityOf(const session::Component& component)
{
    return std::tuple(component.product.section(u'-', 0, 0), component.network, component.device);
}

bool isSame(const session::Component& a, const session::Component& b)
{
    return a.product == b.product && a.status == b.status;
}

} // namespace

std::optional<std::vector<session::Component>> readExpectation(const InputFile& file)
{
    const auto bytes = file.content->bytes();
    const auto text = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
    std::optional<std::vector<session::Component>> last;
    const auto lines = text.split('\n');
    for (const QByteArray& line : lines) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (object["type"_L1].toString() == kind::configuration.name)
            last = componentsOf(object["components"_L1]);
    }
    return last;
}

std::vector<Difference> differences(std::span<const session::Component> expected,
                                    std::span<const session::Component> found)
{
    std::vector<Difference> all;
    std::vector<session::Component> left(found.begin(), found.end());
    for (const session::Component& wanted : expected) {
        const auto fits = [&](const auto& each) { return identityOf(each) == identityOf(wanted); };
        // Of several with the same identity the very same one first.
        auto match = std::ranges::find_if(
            left, [&](const auto& each) { return fits(each) && isSame(each, wanted); });
        if (match == left.end())
            match = std::ranges::find_if(left, fits);
        if (match == left.end()) {
            all.push_back({wanted, std::nullopt});
            continue;
        }
        if (!isSame(*match, wanted))
            all.push_back({wanted, *match});
        left.erase(match);
    }
    for (const session::Component& each : left)
        all.push_back({std::nullopt, each});
    return all;
}

} // namespace fldc::cli
