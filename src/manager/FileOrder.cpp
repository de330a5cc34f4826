#include "manager/FileOrder.h"

#include "firmware/clsFile.h"
#include "firmware/colFiles.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <vector>

namespace fldc {

namespace {

// A file belongs to the first group whose pattern its tag begins with.
constexpr std::array groupPatterns{u"^J[HV]A[0-9]G", u"^J[HV]A[0-9]B", u"^J[HV]A[0-9][^BG]", u""};

std::size_t groupOf(const QString& tag)
{
    std::size_t group = 0;
    while (!QRegularExpression(QString::fromUtf16(groupPatterns.at(group)),
                               QRegularExpression::DotMatchesEverythingOption)
                .match(tag)
                .hasMatch())
        ++group;
    return group;
}

} // namespace

QStringList SplitFileList(const QString& text, const QString& separator)
{
    if (separator.isEmpty() || !text.contains(separator))
        return text.split(u'|');
    QStringList elements = text.split(separator);
    QString folder = elements.takeFirst();
    if (!folder.endsWith(u'\\'))
        folder += u'\\';
    QStringList paths;
    for (const QString& element : elements)
        paths.append(folder + element);
    return paths;
}

QStringList splitPaths(const QString& text, const QString& separator)
{
    return separator.isEmpty() ? QStringList(text) : text.split(separator);
}

void OrderFilesForDownload(colFiles& files)
{
    struct Placed {
        std::size_t group;
        std::shared_ptr<clsFile> file;
    };
    std::vector<Placed> placed;
    for (const auto& file : files.items())
        placed.push_back({groupOf(file->TagName()), file});
    std::ranges::stable_sort(placed, {}, &Placed::group);
    while (files.Count() > 0)
        files.Remove(1);
    for (const Placed& each : placed)
        files.Add(each.file, each.file->Name());
}

} // namespace fldc
