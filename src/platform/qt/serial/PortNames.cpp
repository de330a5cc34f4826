#include "platform/qt/serial/PortNames.h"

#include <QCollator>
#include <QSet>

#include <algorithm>
#include <limits>

namespace fldc {

namespace {

constexpr QStringView prefix = u"COM";

} // namespace

QString portName(int number)
{
    return prefix.toString() + QString::number(number) + u':';
}

int portNumber(QStringView name)
{
    if (!name.startsWith(prefix))
        return 0;
    QStringView digits = name.sliced(prefix.size());
    if (digits.endsWith(u':'))
        digits.chop(1);
    const bool allDigits =
        std::ranges::all_of(digits, [](QChar c) { return c >= u'0' && c <= u'9'; });
    const int number = allDigits ? digits.toInt() : 0;
    return number <= std::numeric_limits<qint16>::max() ? number : 0;
}

PortMap parsePortList(const QString& text)
{
    PortMap ports;
    const QStringList entries = text.split(u';', Qt::SkipEmptyParts);
    for (const QString& entry : entries) {
        const qsizetype equals = entry.indexOf(u'=');
        if (equals < 0)
            continue;
        const int number = portNumber(QStringView(entry).first(equals).trimmed());
        const QString path = entry.sliced(equals + 1).trimmed();
        if (number > 0 && !path.isEmpty())
            ports.insert(number, path);
    }
    return ports;
}

PortMap numberPorts(const PortMap& pinned, QStringList devices,
                    const std::function<QString(const QString& path)>& realPath,
                    const PortMap& given)
{
    QSet<QString> numbered;
    for (const QString& path : pinned)
        numbered.insert(realPath(path));

    QCollator naturalOrder{QLocale(QLocale::English)};
    naturalOrder.setNumericMode(true);
    std::ranges::sort(devices, naturalOrder);

    PortMap ports = pinned;
    QStringList fresh;
    for (const QString& device : std::as_const(devices)) {
        const QString real = realPath(device);
        if (numbered.contains(real))
            continue;
        numbered.insert(real);
        if (const int before = given.key(device, 0); before != 0 && !pinned.contains(before))
            ports.insert(before, device);
        else
            fresh.append(device);
    }
    int next = 1;
    for (const QString& device : std::as_const(fresh)) {
        while (ports.contains(next) || given.contains(next))
            ++next;
        ports.insert(next, device);
    }
    return ports;
}

} // namespace fldc
