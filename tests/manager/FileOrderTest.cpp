#include "manager/FileOrder.h"

#include "firmware/clsFile.h"
#include "firmware/colFiles.h"

#include <gtest/gtest.h>

namespace fldc {
namespace {

struct ListCase {
    QString text;
    QString separator;
    QStringList paths;
};

TEST(FileOrder, ReadsTheThreeFormsOfAFileList)
{
    const QString comma = QStringLiteral(",");
    const QString nul(QChar::Null);
    const ListCase cases[]{
        {QStringLiteral("C:\\fw,a.srec,b.srec"),
         comma,
         {QStringLiteral("C:\\fw\\a.srec"), QStringLiteral("C:\\fw\\b.srec")}},
        {QStringLiteral("C:\\fw\\,a.srec"), comma, {QStringLiteral("C:\\fw\\a.srec")}},
        {QStringLiteral("C:\\fw,"), comma, {QStringLiteral("C:\\fw\\")}},
        {QStringLiteral("C:\\fw\\a.srec"), comma, {QStringLiteral("C:\\fw\\a.srec")}},
        {QStringLiteral("C:\\a.srec|C:\\b.srec"),
         comma,
         {QStringLiteral("C:\\a.srec"), QStringLiteral("C:\\b.srec")}},
        {QStringLiteral("/fw") + nul + QStringLiteral("a,1.srec") + nul + QStringLiteral("b.srec"),
         nul,
         {QStringLiteral("/fw\\a,1.srec"), QStringLiteral("/fw\\b.srec")}},
        {QStringLiteral("a.srec"), QString(), {QStringLiteral("a.srec")}},
    };
    for (const ListCase& each : cases)
        EXPECT_EQ(SplitFileList(each.text, each.separator), each.paths) << qPrintable(each.text);

    EXPECT_EQ(splitPaths(QStringLiteral("C:\\a.srec;D:\\b.srec"), QStringLiteral(";")),
              (QStringList{QStringLiteral("C:\\a.srec"), QStringLiteral("D:\\b.srec")}));
}

TEST(FileOrder, PutsFpgaImagesFirstThenBootCodeThenTheRadiosOwn)
{
    colFiles files;
    for (const char* tag : {"JVA1B1.00", "JWA2X9", "JVA2F7", "JHA3G2", "jva1g0", "JHAXG1",
                            "JVA1B0.99", "JVA1", "JHA9T"}) {
        const auto file = std::make_shared<clsFile>();
        file->setTagName(QString::fromUtf8(tag));
        files.Add(file, QStringLiteral("path of ") + file->TagName());
    }
    OrderFilesForDownload(files);
    QStringList tags;
    for (const auto& file : files.items()) {
        tags.append(file->TagName());
        EXPECT_EQ(files.Item(QStringLiteral("path of ") + file->TagName()), file);
    }
    EXPECT_EQ(tags.join(u' '),
              QStringLiteral("JHA3G2 JVA1B1.00 JVA1B0.99 JVA2F7 JHA9T JWA2X9 jva1g0 "
                             "JHAXG1 JVA1"));
}

} // namespace
} // namespace fldc
