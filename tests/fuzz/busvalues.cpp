// Calls of the published classes with arguments of every type. Each is carried out or refused, and
// a property that was set has the value that it was set to.

#include "Fuzzing.h"
#include "automation/PublishedClasses.h"
#include "platform/ShowError.h"

using namespace fldc;

namespace {

class Objects final : public IObjectPaths {
public:
    std::vector<AnyObject> all;

    [[nodiscard]] QString pathOf(const AnyObject& object, const QString& /*client*/) override
    {
        all.push_back(object);
        return QStringLiteral("/%1").arg(all.size() - 1);
    }
    [[nodiscard]] std::shared_ptr<void> objectAt(const QString& path, std::type_index type) override
    {
        const auto at = static_cast<std::size_t>(QStringView(path).mid(1).toUInt());
        if (at >= all.size())
            throw BusError{unknownObject, path};
        if (all[at].type != type)
            throw PlatformFailure(FailureNumber::TypeMismatch);
        return all[at].object;
    }
};

QVariant anyValue(FuzzedDataProvider& fuzz, char16_t signature)
{
    const auto number = fuzz.ConsumeBool() ? fuzz.ConsumeIntegral<qint64>()
                                           : fuzz.ConsumeIntegralInRange<qint64>(-2, 5);
    const QByteArray text = QByteArray::fromStdString(fuzz.ConsumeRandomLengthString(40));
    switch (fuzz.ConsumeIntegralInRange(0, 9) == 0 ? fuzz.ConsumeIntegral<char>() : signature) {
    case 'n':
        return QVariant::fromValue(static_cast<qint16>(number));
    case 'i':
        return static_cast<qint32>(number);
    case 'x':
        return number;
    case 't':
        return static_cast<quint64>(number);
    case 'y':
        return text;
    case 'b':
        return number > 0;
    case 'o':
        return QVariant::fromValue(QDBusObjectPath(QStringLiteral("/%1").arg(number)));
    case 'v':
        return QVariant::fromValue(QDBusVariant(anyValue(fuzz, number > 0 ? 'i' : 's')));
    default:
        return QString::fromLatin1(text);
    }
}

void useProperty(const BoundProperty& property, void* object, const Call& call, const QVariant& value)
{
    if (property.set)
        property.set(object, call, value);
    if (!property.get)
        return;
    const QVariant now = property.get(object, call);
    if (property.set && (property.type == u"n" || property.type == u"i"))
        EXPECT_EQ(wholeNumber(now), wholeNumber(value));
    else if (property.set && property.type != u"o")
        EXPECT_EQ(now, value);
}

void useObject(const AnyObject& object, const BoundClass& bound, const Call& call, FuzzedDataProvider& fuzz)
{
    const auto methods = bound.methods().values();
    const auto properties = bound.properties().values();
    if (methods.isEmpty() && properties.isEmpty())
        return;
    const auto choice = fuzz.ConsumeIntegralInRange<qsizetype>(0, methods.size() + properties.size() - 1);
    if (choice >= methods.size()) {
        const BoundProperty& property = properties[choice - methods.size()];
        return useProperty(property, object.object.get(), call, anyValue(fuzz, property.type[0].unicode()));
    }
    QVariantList arguments;
    for (const QChar signature : methods[choice].in)
        arguments.append(anyValue(fuzz, signature.unicode()));
    (void)methods[choice].invoke(object.object.get(), call, arguments);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const std::vector<BoundClass> classes = supportingClasses();
    FuzzedDataProvider fuzz(bytes, size);
    AnyMessages messages;
    const ErrorBoxScope scope(messages);
    Objects objects;
    const Call call{objects, {}};
    for (const BoundClass& bound : classes) {
        if (bound.create())
            (void)objects.pathOf({bound.type(), bound.create()()}, {});
    }
    while (fuzz.remaining_bytes() > 0) {
        const AnyObject object = fuzz.ConsumeBool()
                                     ? objects.all.back()
                                     : objects.all[fuzz.ConsumeIntegralInRange<std::size_t>(0, objects.all.size() - 1)];
        const auto bound = std::ranges::find(classes, object.type, &BoundClass::type);
        try {
            useObject(object, *bound, call, fuzz);
        } catch (const PlatformFailure&) {
        } catch (const BusError&) {
        }
    }
    return 0;
}
