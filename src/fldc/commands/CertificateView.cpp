#include "fldc/commands/CertificateView.h"

#include "shared/HexText.h"

#include <QJsonArray>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

QString targetText(const QJsonObject& target)
{
    QString text = u"  "_s + target["tag"_L1].toString();
    if (!target["network"_L1].isNull())
        text += u", network %1, device %2"_s.arg(target["network"_L1].toInt())
                    .arg(target["device"_L1].toInt());
    text += target["locked"_L1].toBool() ? u", written and locked\n"_s : u", not complete\n"_s;
    for (const auto& table : target["tables"_L1].toArray()) {
        const auto address = static_cast<std::uint32_t>(table["address"_L1].toInteger());
        text += u"    "_s + hexNumber(address, 8) +
                u"  %1 bytes, crc32 "_s.arg(table["bytes"_L1].toInteger()) +
                table["crc32"_L1].toString(u"not known"_s) + u'\n';
    }
    return text;
}

} // namespace

QString certificateText(const QJsonObject& certificate)
{
    const auto text = [&](QLatin1StringView key) { return certificate[key].toString(); };
    const QJsonObject result = certificate["result"_L1].toObject();
    QString lines = u"unit     "_s + text("unit"_L1) + u"\njob      "_s + text("job"_L1) +
                    u"\nfrom     "_s + text("start"_L1) + u"\nto       "_s + text("end"_L1) +
                    u"\nby       "_s + text("user"_L1) + u" on "_s + text("host"_L1) +
                    u", fldc "_s + text("version"_L1) + u"\nradio    "_s +
                    certificate["radio"_L1]["identifier"_L1].toString(u"-"_s) + u", "_s +
                    result["radio"_L1].toString() + u"\nfiles\n"_s;
    for (const auto& file : certificate["started"_L1]["files"_L1].toArray())
        lines += u"  "_s + file["path"_L1].toString() + u"\n    sha256 "_s +
                 file["sha256"_L1].toString() + u'\n';
    lines += u"written\n"_s;
    for (const auto& target : certificate["targets"_L1].toArray())
        lines += targetText(target.toObject());
    return lines + u"result   "_s + result["message"_L1].toString() + u'\n';
}

} // namespace fldc::cli
