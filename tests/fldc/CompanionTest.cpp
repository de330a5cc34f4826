#include "certificate/Certificate.h"
#include "certificate/ExitCodes.h"
#include "certificate/JsonObject.h"
#include "fldc/certificate/CertificateFolder.h"
#include "fldc/output/ProgressView.h"
#include "platform/PlatformFailure.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace fldc::cli {
namespace {

using namespace Qt::StringLiterals;

QStringList pageMatches(const QString& pattern)
{
    QFile page(QStringLiteral(FLDC_PAGE));
    EXPECT_TRUE(page.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(page.readAll());
    QStringList found;
    for (const auto& match :
         QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text))
        found.append(match.captured(1) + u' ' + match.captured(2));
    return found;
}

TEST(Page, HasEveryKeyOfTheProgramAndNoOther)
{
    QStringList keys;
    for (const ObjectKind& kind : objectKinds) {
        const QString name = kind.name;
        for (const QString& key : QString(kind.keys).split(u' '))
            keys.append(name + u' ' + QString(key).remove(u'?'));
    }
    EXPECT_EQ(pageMatches(uR"(^\| `([a-z.-]+)` \| (?:`([a-z0-9_]+)`|–) \|)"_s), keys);
}

TEST(Page, HasTheExitCodesInTheirOrder)
{
    QStringList codes;
    for (const ExitMeaning& row : exitCodes)
        codes.append(QString::number(static_cast<int>(row.code)) + u' ');
    EXPECT_EQ(codes.join(u""), u"130 143 129 141 7 8 10 6 5 4 3 9 2 1 0 "_s);
    EXPECT_EQ(pageMatches(uR"(^\| (\d+) \|)"_s), codes);
    EXPECT_EQ(foremost(Exit::PartlyMatched, Exit::OutputLost), Exit::OutputLost);
    EXPECT_EQ(foremost(Exit::Interrupted, Exit::Incomplete), Exit::Interrupted);
}

TEST(JsonObject, RefusesKeysThatItsKindDoesNotHave)
{
    EXPECT_THROW((void)makeObject(kind::speed, {}), PlatformFailure);
    EXPECT_THROW((void)makeObject(kind::speed, {{"bauds"_L1, 1}}), PlatformFailure);
    EXPECT_THROW((void)makeObject(kind::speed, {{"baud"_L1, 1}, {"baud"_L1, 2}}), PlatformFailure);
    EXPECT_TRUE(makeObject(kind::restarted, {}).isEmpty());
    const QString half = u"a"_s + QChar(0xD800) + u"b\U0001F600"_s;
    const QJsonObject boot =
        makeObject(kind::bootApplication, {{"file"_L1, half}, {"bytes"_L1, 1}});
    EXPECT_TRUE(jsonLine(kind::bootApplication, boot)
                    .startsWith("{\"bytes\":1,\"file\":\"a\xEF\xBF\xBD"
                                "b\xF0\x9F\x98\x80\",\"time\":\"2"));
}

TEST(ProgressView, RedrawsALineOrPrintsOneForEveryTenPerCent)
{
    const auto at = [](int percent) {
        return Progress{u"A\x1b\n"_s, percent, 1234.4, 61.2, 19200};
    };
    ProgressView lines(false);
    QStringList shown;
    for (const int percent : {1, 9, 10, 19, 100, 100, 5})
        shown.append(lines.next(at(percent), 80));
    EXPECT_EQ(shown.takeFirst(),
              u"A\uFFFD\uFFFD    1 %    1234 B/s  1 min 02 s left  19200 baud\n"_s);
    shown.replaceInStrings(QRegularExpression(u" %.*\n"_s), QString())
        .replaceInStrings(u"A\uFFFD\uFFFD"_s, QString());
    for (QString& line : shown)
        line = line.trimmed();
    EXPECT_EQ(shown, (QStringList{{}, u"10"_s, {}, u"100"_s, {}, u"5"_s}));

    ProgressView drawn(true);
    EXPECT_EQ(drawn.next(at(50), 20), u"\r\x1b[KA\uFFFD\uFFFD  [############."_s);
    EXPECT_EQ(drawn.end() + drawn.end(), u"\n"_s);
}

TEST(CertificateFolder, WritesWholeFilesAndReplacesNone)
{
    const QTemporaryDir scratch;
    const QString path = scratch.filePath(u"a/b"_s);
    const CertificateFolder folder(path.toStdString());
    const auto time = QDateTime::fromString(u"2026-11-23T05:30:00.999Z"_s, Qt::ISODateWithMs);
    const QString about = u"../é /x_1-2.3"_s;
    EXPECT_EQ(folder.write("1", time, about), u"2026-11-23T05_30_00.999Z-..____x_1-2.3.json"_s);
    EXPECT_EQ(folder.write("2", time, about), u"2026-11-23T05_30_01.000Z-..____x_1-2.3.json"_s);
    EXPECT_LT(folder.write("3", time, QString(5000, u'u')).size(), 256);
    // Nothing temporary is left.
    EXPECT_EQ(QDir(path).entryList(QDir::Files | QDir::Hidden).size(), 3);
    QFile first(path + u"/2026-11-23T05_30_00.999Z-..____x_1-2.3.json"_s);
    ASSERT_TRUE(first.open(QIODevice::ReadOnly));
    EXPECT_EQ(first.readAll(), "1");
    EXPECT_THROW(CertificateFolder(first.fileName().toStdString()), PlatformFailure);
    EXPECT_THROW(CertificateFolder("/proc/none"), PlatformFailure);
}

QJsonObject json(const char* text)
{
    return QJsonDocument::fromJson(text).object();
}

TEST(Certificate, HoldsWhatTheRadioToldOfTheLastAttempt)
{
    Certificate certificate({u"7"_s, u"J"_s, u"then"_s, json(R"({"version": "1"})"), {}}, {});
    const std::pair<ObjectKind, const char*> told[] = {
        {kind::radio, R"({"identifier": "RVKC4*"})"},
        {kind::configuration,
         R"({"when": "before", "components": [{"p": 1}, {"p": 2}, {"p": 2}]})"},
        {kind::target, R"({"file": 1, "tag": "T", "network": 0, "device": 1})"},
        {kind::blocks, R"({"action": "unlocked"})"},
        {kind::table, R"({"address": 1, "bytes": 2, "wire_bytes": 2, "compressed": false})"},
        {kind::blocks, R"({"action": "erased"})"},
        {kind::table, R"({"address": 3, "bytes": 4, "wire_bytes": 4, "compressed": true})"},
        {kind::blocks, R"({"action": "locked"})"},
        {kind::configuration, R"({"when": "after", "components": [{"p": 2}, {"p": 3}]})"},
    };
    for (const auto& [kind, object] : told)
        certificate.hear(kind, json(object));
    QJsonObject all = certificate.toJson(json(R"({"exit": 0})"));
    for (const auto key : {"host"_L1, "user"_L1, "end"_L1})
        EXPECT_FALSE(all.take(key).toString().isEmpty()) << key.data();
    EXPECT_EQ(all, json(R"({"type": "certificate", "schema": 1, "started": {"version": "1"},
        "radio": {"identifier": "RVKC4*"}, "boot_application": null, "speed": null,
        "configuration_before": [{"p": 1}, {"p": 2}, {"p": 2}],
        "configuration_after": [{"p": 2}, {"p": 3}],
        "difference": {"added": [{"p": 3}], "removed": [{"p": 1}, {"p": 2}]},
        "targets": [{"file": 1, "tag": "T", "network": 0, "device": 1, "locked": true, "tables":
            [{"address": 3, "bytes": 4, "wire_bytes": 4, "compressed": true, "crc32": null}]}],
        "retries": [], "result": {"exit": 0}, "version": "1", "adapter": null, "unit": "7",
        "job": "J", "start": "then"})"));
}

} // namespace
} // namespace fldc::cli
