// Calls of the published classes with values of every type. Each is carried out or refused, and a
// property that was set has the value that it was set to.

#include "Fuzzing.h"
#include "automation/PublishedClasses.h"
#include "platform/ShowError.h"

using namespace fldc;

namespace {

struct Objects final : IObjectPaths {
    std::vector<AnyObject> all;

    [[nodiscard]] QString pathOf(const AnyObject& object, const QString& /*client*/) override
    {
        all.push_back(object);
        return QStringLiteral("/%1").arg(all.size() - 1);
    }
    [[nodiscard]] std::shared_ptr<void> objectAt(const QString& path, std::type_index type) override
    {
        const auto at = QStringView(path).mid(1).toUInt();
        if (at >= all.size() || all[at].type != type)
            throw PlatformFailure(FailureNumber::TypeMismatch);
        return all[at].object;
    }
};

// One that a signature asks for, or another.
QVariant anyValue(FuzzedDataProvider& fuzz, QChar signature)
{
    const auto number = fuzz.ConsumeBool() ? fuzz.ConsumeIntegral<qint64>()
                                           : fuzz.ConsumeIntegralInRange<qint64>(-2, 5);
    const QString text = QString::fromStdString(fuzz.ConsumeRandomLengthString(40));
    const QDBusObjectPath path(QStringLiteral("/%1").arg(static_cast<quint32>(number)));
    const std::pair<char16_t, QVariant> values[]{
        {u'n', QVariant::fromValue(static_cast<qint16>(number))},
        {u'i', static_cast<qint32>(number)},
        {u's', text},
        {u'b', number > 0},
        {u'o', QVariant::fromValue(path)},
        {u'v', QVariant::fromValue(QDBusVariant(number > 0 ? QVariant(number) : QVariant(text)))},
        {u'x', number},
        {u't', static_cast<quint64>(number)},
    };
    if (fuzz.ConsumeIntegralInRange(0, 9) == 0)
        return values[fuzz.ConsumeIntegralInRange(0, 7)].second;
    return std::ranges::find(values, signature, &std::pair<char16_t, QVariant>::first)->second;
}

void useProperty(const BoundProperty& property, void* object, const Call& call,
                 const QVariant& value)
{
    if (property.set)
        property.set(object, call, value);
    const QVariant now = property.get(object, call);
    if (property.set && (property.type == u"n" || property.type == u"i"))
        EXPECT_EQ(wholeNumber(now), wholeNumber(value));
    else if (property.set && property.type != u"o")
        EXPECT_EQ(now, value);
}

void useMember(const AnyObject& object, const BoundClass& bound, const Call& call,
               FuzzedDataProvider& fuzz)
{
    QVariantList arguments;
    if (fuzz.ConsumeBool() && !bound.properties().isEmpty()) {
        const auto each = bound.properties().values();
        const auto& property = each[fuzz.ConsumeIntegralInRange<qsizetype>(0, each.size() - 1)];
        useProperty(property, object.object.get(), call, anyValue(fuzz, property.type[0]));
    } else if (!bound.methods().isEmpty()) {
        const auto each = bound.methods().values();
        const auto& method = each[fuzz.ConsumeIntegralInRange<qsizetype>(0, each.size() - 1)];
        for (const QChar signature : method.in)
            arguments.append(anyValue(fuzz, signature));
        (void)method.invoke(object.object.get(), call, arguments);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const std::vector<BoundClass> classes = supportingClasses();
    FuzzedDataProvider fuzz(bytes, size);
    Objects objects;
    const Call call{objects, {}};
    AnyMessages messages;
    const ErrorBoxScope scope(messages);
    for (const BoundClass& bound : classes) {
        if (bound.create())
            objects.all.push_back({bound.type(), bound.create()()});
    }
    while (fuzz.remaining_bytes() > 0) {
        const auto at = fuzz.ConsumeIntegralInRange<std::size_t>(0, objects.all.size() - 1);
        const AnyObject object = objects.all[at];
        try {
            useMember(object, *std::ranges::find(classes, object.type, &BoundClass::type), call,
                      fuzz);
        } catch (const PlatformFailure&) { // refused
        }
    }
    return 0;
}
