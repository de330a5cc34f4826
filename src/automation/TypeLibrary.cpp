#include "automation/TypeLibrary.h"

#include "automation/BoundClass.h"
#include "platform/PlatformFailure.h"

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <utility>

// Outside the namespace, as the macro demands: the resources of a static library are not registered
// by themselves.
static void registerResources()
{
    Q_INIT_RESOURCE(automation);
}

namespace fldc {

namespace {

const QString resourcePath = QStringLiteral(":/automation/com.kelvane.RV4100_FLDC_EXE.xml");

// What every object offers besides its own interfaces.
const QString standardInterfaces = QStringLiteral(
    R"(<interface name="org.freedesktop.DBus.Introspectable">
<method name="Introspect"><arg name="xml_data" type="s" direction="out"/></method>
</interface>
<interface name="org.freedesktop.DBus.Peer">
<method name="Ping"/>
<method name="GetMachineId"><arg name="machine_uuid" type="s" direction="out"/></method>
</interface>
)");
const QString propertiesElement = QStringLiteral(
    R"(<interface name="org.freedesktop.DBus.Properties">
<method name="Get"><arg name="interface_name" type="s" direction="in"/><arg name="property_name" type="s" direction="in"/><arg name="value" type="v" direction="out"/></method>
<method name="GetAll"><arg name="interface_name" type="s" direction="in"/><arg name="values" type="a{sv}" direction="out"/></method>
<method name="Set"><arg name="interface_name" type="s" direction="in"/><arg name="property_name" type="s" direction="in"/><arg name="value" type="v" direction="in"/></method>
<signal name="PropertiesChanged"><arg name="interface_name" type="s"/><arg name="changed_properties" type="a{sv}"/><arg name="invalidated_properties" type="as"/></signal>
</interface>
)");

void writeComment(QXmlStreamWriter& writer, const QString& comment)
{
    writer.writeEmptyElement(QStringLiteral("annotation"));
    writer.writeAttribute(QStringLiteral("name"), QStringLiteral("org.freedesktop.DBus.DocString"));
    writer.writeAttribute(QStringLiteral("value"), comment.simplified());
}

// The element that begins at the reader's position; @p visit sees each element in it. A comment
// before an element, and @p comment before this one, becomes an annotation in it.
template <class Visit>
QString copyElement(QXmlStreamReader& reader, QString comment, const Visit& visit)
{
    QString copy;
    QXmlStreamWriter writer(&copy);
    int depth = 0;
    do {
        if (reader.isStartElement()) {
            ++depth;
            visit(reader.name(), reader.attributes());
        }
        if (reader.isComment())
            comment = reader.text().toString();
        else
            writer.writeCurrentToken(reader);
        if (reader.isStartElement() && !comment.isEmpty())
            writeComment(writer, std::exchange(comment, {}));
        if (reader.isEndElement())
            --depth;
    } while (depth > 0 && !reader.hasError() && (reader.readNext(), true));
    return copy;
}

PublishedInterface readInterface(QXmlStreamReader& reader, const QString& comment)
{
    PublishedInterface interface;
    QString member;
    interface.xml = copyElement(reader, comment, [&](QStringView element, const auto& attributes) {
        const auto attribute = [&](const char* name) {
            return attributes.value(QLatin1String(name)).toString();
        };
        if (element == QLatin1String("method")) {
            member = attribute("name");
            interface.methods.insert(member, {});
        } else if (element == QLatin1String("signal")) {
            member.clear();
        } else if (element == QLatin1String("arg") && !member.isEmpty()) {
            PublishedMethod& method = interface.methods[member];
            (attribute("direction") == QLatin1String("out") ? method.out : method.in) +=
                attribute("type");
        } else if (element == QLatin1String("property")) {
            const QString access = attribute("access");
            interface.properties.insert(
                attribute("name"), {attribute("type"), access.startsWith(QLatin1String("read")),
                                    access.endsWith(QLatin1String("write"))});
        }
    });
    return interface;
}

} // namespace

TypeLibrary::TypeLibrary()
{
    registerResources();
    QFile file(resourcePath);
    QXmlStreamReader reader(&file);
    if (file.open(QIODevice::ReadOnly)) {
        QString comment;
        while (!reader.atEnd()) {
            const auto token = reader.readNext();
            if (token == QXmlStreamReader::Comment)
                comment = reader.text().toString();
            if (token != QXmlStreamReader::StartElement ||
                reader.name() != QLatin1String("interface"))
                continue;
            const QString name = reader.attributes().value(QLatin1String("name")).toString();
            m_interfaces.insert(name, readInterface(reader, std::exchange(comment, {})));
        }
    }
    if (!file.isOpen() || reader.hasError())
        throw PlatformFailure(FailureNumber::Internal,
                              resourcePath + QStringLiteral(": ") + reader.errorString());
}

const PublishedInterface* TypeLibrary::find(const QString& interface) const
{
    const auto found = m_interfaces.constFind(interface);
    return found == m_interfaces.constEnd() ? nullptr : &*found;
}

void TypeLibrary::verify(const BoundClass& bound) const
{
    QMap<QString, PublishedMethod> methods;
    for (auto method = bound.methods().begin(); method != bound.methods().end(); ++method)
        methods.insert(method.key(), {method->in, method->out});
    QMap<QString, PublishedProperty> properties;
    for (auto property = bound.properties().begin(); property != bound.properties().end();
         ++property) {
        const bool readable = property->get != nullptr;
        const bool writable = property->set != nullptr;
        properties.insert(property.key(), {property->type, readable, writable});
    }
    const PublishedInterface* published = find(bound.interface());
    if (!published || published->methods != methods || published->properties != properties)
        throw PlatformFailure(FailureNumber::Internal,
                              bound.interface() + QStringLiteral(" is not served as published"));
    for (const BoundClass& further : bound.further())
        verify(further);
}

QString TypeLibrary::describe(const QStringList& interfaces, const QStringList& children) const
{
    QString document =
        QStringLiteral("<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection "
                       "1.0//EN\" \"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd"
                       "\">\n<node>\n");
    document += standardInterfaces;
    if (!interfaces.isEmpty())
        document += propertiesElement;
    for (const QString& interface : interfaces) {
        if (const PublishedInterface* published = find(interface))
            document += published->xml + QStringLiteral("\n");
    }
    for (const QString& child : children)
        document += QStringLiteral("<node name=\"%1\"/>\n").arg(child);
    return document + QStringLiteral("</node>\n");
}

} // namespace fldc
