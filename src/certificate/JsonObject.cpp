#include "certificate/JsonObject.h"

#include "platform/PlatformFailure.h"

#include <QDateTime>
#include <QJsonDocument>

#include <algorithm>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void throwWrongKey(const ObjectKind& kind, QLatin1StringView key)
{
    throw PlatformFailure(FailureNumber::Internal, u"JSON object %1, key %2"_s.arg(kind.name, key));
}

// Whether the kind has the key: 1 when every object of the kind must have it, 2 when some do.
int keyOf(const ObjectKind& kind, QLatin1StringView key)
{
    for (const QLatin1StringView known : kind.keys.tokenize(u' ')) {
        if (known == key)
            return 1;
        if (known.endsWith(u'?') && known.chopped(1) == key)
            return 2;
    }
    throwWrongKey(kind, key);
}

int requiredKeys(const ObjectKind& kind)
{
    int count = 0;
    for (const QLatin1StringView key : kind.keys.tokenize(u' ', Qt::SkipEmptyParts))
        count += key.endsWith(u'?') ? 0 : 1;
    return count;
}

// Returns 1 for a field that every object of the kind must have, else 0.
int insertField(QJsonObject& object, const ObjectKind& kind, QLatin1StringView key,
                const QJsonValue& value)
{
    if (object.contains(key))
        throwWrongKey(kind, key);
    object.insert(key, value.isString() ? QJsonValue(validText(value.toString())) : value);
    return keyOf(kind, key) == 1 ? 1 : 0;
}

int insertFields(QJsonObject& object, const ObjectKind& kind, Fields fields)
{
    int required = 0;
    for (const auto& [key, value] : fields)
        required += insertField(object, kind, key, value);
    return required;
}

// @p kindName: of the object that has the field @p key.
QJsonValue toJson(const QVariant& value, const QString& kindName, const QString& key)
{
    QJsonArray array;
    if (value.metaType() == QMetaType::fromType<QList<QVariantMap>>()) {
        const ObjectKind& kind = kindNamed(QString(kindName + u'.' + key));
        for (const QVariantMap& part : value.value<QList<QVariantMap>>())
            array.append(makeObject(kind, part));
    } else if (value.metaType() == QMetaType::fromType<QList<qint64>>()) {
        for (const qint64 each : value.value<QList<qint64>>())
            array.append(each);
    } else {
        return QJsonValue::fromVariant(value);
    }
    return array;
}

} // namespace

QJsonObject makeObject(const ObjectKind& kind, Fields fields)
{
    QJsonObject object;
    if (insertFields(object, kind, fields) != requiredKeys(kind))
        throwWrongKey(kind, "missing"_L1);
    return object;
}

QJsonObject makeObject(const ObjectKind& kind, const QVariantMap& fields)
{
    QJsonObject object;
    int required = 0;
    for (auto field = fields.begin(); field != fields.end(); ++field)
        required += insertField(object, kind, QLatin1StringView(field.key().toLatin1()),
                                toJson(*field, kind.name, field.key()));
    if (required != requiredKeys(kind))
        throwWrongKey(kind, "missing"_L1);
    return object;
}

const ObjectKind& kindNamed(QAnyStringView name)
{
    const auto* found = std::ranges::find_if(
        objectKinds, [&](const ObjectKind& kind) { return QAnyStringView(kind.name) == name; });
    if (found == objectKinds.end())
        throw PlatformFailure(FailureNumber::Internal, u"JSON object "_s + name.toString());
    return *found;
}

QJsonObject extended(QJsonObject object, const ObjectKind& kind, Fields more)
{
    (void)insertFields(object, kind, more);
    return object;
}

QByteArray jsonLine(const ObjectKind& kind, QJsonObject object)
{
    object.insert("type"_L1, QString(kind.name));
    object.insert("time"_L1, utcNow());
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QString validText(const QString& text)
{
    if (text.isValidUtf16())
        return text;
    QString valid = text;
    for (qsizetype i = 0; i < valid.size(); ++i) {
        const bool pair =
            valid[i].isHighSurrogate() && i + 1 < valid.size() && valid[i + 1].isLowSurrogate();
        if (pair)
            ++i;
        else if (valid[i].isSurrogate())
            valid[i] = QChar::ReplacementCharacter;
    }
    return valid;
}

QJsonArray jsonTexts(const QStringList& texts)
{
    QJsonArray array;
    for (const QString& text : texts)
        array.append(validText(text));
    return array;
}

QString utcNow()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
}

} // namespace fldc
