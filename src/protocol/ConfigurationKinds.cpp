#include "protocol/ConfigurationKinds.h"

#include "radio/colConfigurations.h"
#include "shared/DisplayTexts.h"

#include <algorithm>
#include <array>
#include <optional>

namespace fldc {

namespace {

enum class Erasable { Never, Always, HardwarePair, ImagePair };

struct Kind {
    QStringView typeCode;
    Text componentType;
    Erasable erasable;
    bool needsF1Key;
};

constexpr std::array kinds{
    Kind{u"JF", Text::RadioApplication, Erasable::Always, false},
    Kind{u"JA", Text::Dsp, Erasable::Always, false},
    Kind{u"JB", Text::BootCode, Erasable::Never, false},
    Kind{u"JG", Text::FpgaImage, Erasable::ImagePair, false},
    Kind{u"R", Text::HardwareId, Erasable::HardwarePair, false},
    Kind{u"SA", Text::SystemConfigTable, Erasable::Always, false},
    Kind{u"JC", Text::RadioApplication, Erasable::Never, true},
    Kind{u"JT", Text::RadioApplication, Erasable::Never, true},
};

constexpr Kind otherKind{u"", Text::NonStandard, Erasable::Always, false};

const Kind& kindOf(const QString& productId)
{
    const QString code = componentTypeCode(productId);
    const auto* found = std::ranges::find(kinds, QStringView(code), &Kind::typeCode);
    return found == kinds.end() ? otherKind : *found;
}

// Whether the radio holds two hardware identifiers, or two FPGA images of different status, on one
// network: only then may one of the pair be erased.
struct Pairs {
    bool hardware = false;
    bool image = false;
};

Pairs findPairs(const colConfigurations& configurations)
{
    Pairs pairs;
    bool hardwareSeen = false;
    bool imageSeen = false;
    int network = 0; // of the latest hardware identifier or FPGA image
    std::int32_t imageStatus = 0;
    for (const auto& configuration : configurations.items()) {
        const Erasable erasable = kindOf(configuration->ProductID()).erasable;
        if (erasable == Erasable::HardwarePair) {
            pairs.hardware |= hardwareSeen && configuration->NetWorkID() == network;
            hardwareSeen = true;
            network = configuration->NetWorkID();
        } else if (erasable == Erasable::ImagePair) {
            pairs.image |= imageSeen && configuration->NetWorkID() == network &&
                           configuration->Status() != imageStatus;
            imageSeen = true;
            imageStatus = configuration->Status();
            network = configuration->NetWorkID();
        }
    }
    return pairs;
}

bool mayBeErased(Erasable erasable, std::int32_t status, const Pairs& pairs)
{
    return erasable == Erasable::Always || (erasable == Erasable::HardwarePair && pairs.hardware) ||
           (erasable == Erasable::ImagePair && status != 0 && pairs.image);
}

} // namespace

QString componentTypeCode(QStringView productId)
{
    const QString first = productId.left(1).toString().toUpper();
    return first == u"R" ? first : first + productId.mid(4, 1).toString().toUpper();
}

bool ClassifyConfigurations(colConfigurations& configurations, bool allErasable)
{
    const Pairs pairs = findPairs(configurations);
    bool f1KeyRequired = false;
    for (const auto& configuration : configurations.items()) {
        const Kind& kind = kindOf(configuration->ProductID());
        configuration->setComponentType(displayText(kind.componentType));
        configuration->setBlnCanBeErased(
            allErasable || mayBeErased(kind.erasable, configuration->Status(), pairs));
        f1KeyRequired |= kind.needsF1Key;
    }
    return f1KeyRequired;
}

} // namespace fldc
