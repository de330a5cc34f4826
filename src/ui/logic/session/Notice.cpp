#include "ui/logic/session/Notice.h"

#include "session/Names.h"
#include "shared/ErrorCodes.h"
#include "shared/NumberText.h"
#include "ui/logic/session/RunNotes.h"

#include <algorithm>
#include <array>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

constexpr auto cancelled = static_cast<std::int32_t>(Code::UserCancelled);
constexpr auto leftOver = static_cast<std::int32_t>(Code::FilesNotDownloaded);

constexpr std::array operationNames{u"report", u"download", u"erasure", u"restart", u"test"};

QString operationName(const Run& run)
{
    return run.operation
               ? QString::fromUtf16(operationNames.at(static_cast<std::size_t>(*run.operation)))
               : u"load"_s;
}

bool reachedItsEnd(const Run& run)
{
    return run.code == 0 || run.code == leftOver;
}

bool isWritten(const ImageNote& image)
{
    return image.begun > 0 && image.locked == image.begun;
}

// Flash can't be read back: what the radio reports of itself afterwards is all there is.
bool isConfirmed(const Run& run, const ImageNote& image)
{
    return !run.after || std::ranges::any_of(*run.after, [&](const session::Component& each) {
        return each.product == image.tag && each.status == 0;
    });
}

QStringList writtenTags(const Run& run)
{
    QStringList tags;
    for (const ImageNote& image : run.images) {
        if (isWritten(image))
            tags.append(image.tag);
    }
    return tags;
}

QString lineOf(const Run& run, const ImageNote& image)
{
    const QString name = image.file + u", "_s + image.tag;
    if (isWritten(image) && isConfirmed(run, image))
        return u"Written: "_s + name;
    if (isWritten(image))
        return u"Written, but the radio does not show it: "_s + name;
    if (image.begun > 0)
        return u"Begun and not completed: "_s + name;
    return reachedItsEnd(run) ? u"Not written, no component of the radio matches: "_s + name
                              : u"Not reached: "_s + name;
}

// "error 42, Timer expired - no response received"
QString failureOf(const Run& run)
{
    const QString number = u"error %1"_s.arg(run.code);
    return run.message.isEmpty() ? number : number + u", "_s + run.message;
}

QString downloadHeadline(const Run& run)
{
    const QStringList tags = writtenTags(run);
    const auto left = std::ranges::count(run.images, 0, &ImageNote::begun);
    if (tags.isEmpty())
        return u"Nothing was written: no component of the radio matches."_s;
    const QString written =
        u"Written in %1: %2."_s.arg(durationText(run.seconds()), tags.join(u", "_s));
    return left == 0 ? written
                     : written + u" Not written: %1 of %2."_s.arg(left).arg(run.images.size());
}

QString successHeadline(const Run& run)
{
    switch (*run.operation) {
    case session::Operation::Download:
        return downloadHeadline(run);
    case session::Operation::Erase:
        return u"Erased in %1: %2."_s.arg(durationText(run.seconds()), run.marked.join(u", "_s));
    case session::Operation::Report:
        return u"Read in %1: %2."_s.arg(
            durationText(run.seconds()),
            counted(run.before ? std::ssize(*run.before) : 0, u"component"));
    default:
        return u"Done in %1."_s.arg(durationText(run.seconds()));
    }
}

QString headlineOf(const Run& run)
{
    if (!run.operation)
        return run.code == cancelled ? u"Reading the files was cancelled; nothing was sent."_s
                                     : u"Nothing was sent: "_s + failureOf(run);
    if (reachedItsEnd(run))
        return successHeadline(run);
    if (!run.portObstacle.isEmpty() && run.state() == session::State::Untouched)
        return u"Nothing was sent (error %1): %2."_s.arg(run.code).arg(run.portObstacle);
    const QString after = durationText(run.seconds());
    if (run.code == cancelled)
        return u"The %1 was cancelled after %2."_s.arg(operationName(run), after);
    return u"The %1 failed after %2: %3"_s.arg(operationName(run), after, failureOf(run));
}

Notice::Kind kindOf(const Run& run)
{
    if (!reachedItsEnd(run))
        return run.flashAtRisk() || run.code != cancelled ? Notice::Kind::Failed
                                                          : Notice::Kind::Attention;
    const bool whole = std::ranges::all_of(run.images, [&](const ImageNote& image) {
        return isWritten(image) && isConfirmed(run, image);
    });
    return whole && run.refused.isEmpty() ? Notice::Kind::Good : Notice::Kind::Attention;
}

QStringView adviceOf(const Run& run)
{
    return session::adviceOf(run.state(), static_cast<Code>(run.code));
}

// What can't be seen elsewhere, or else what is to be done.
QString nextOf(const Run& run)
{
    if (!reachedItsEnd(run) && !run.refused.isEmpty())
        return run.refused.constFirst();
    if (!run.portObstacle.isEmpty() && !run.flashAtRisk())
        return run.portRemedy;
    const bool onlyCancelled = run.code == cancelled && run.state() == session::State::Untouched;
    return (reachedItsEnd(run) || onlyCancelled ? textOf(run.state()).meaning : adviceOf(run))
        .toString();
}

} // namespace

QString Notice::text() const
{
    return headline + u'\n' + details.join(u'\n');
}

Notice noticeOf(const Run& run)
{
    if (!run.operation && run.code == 0) // nothing has run yet that is told of
        return {Notice::Kind::Attention, run.remarks.value(0), run.remarks.value(1),
                run.remarks.mid(1)};
    Notice notice;
    notice.kind = kindOf(run);
    notice.headline = headlineOf(run);
    notice.next = nextOf(run);
    for (const ImageNote& image : run.images)
        notice.details.append(lineOf(run, image));
    for (const QString& refused : run.refused)
        notice.details.append(u"Refused: "_s + refused);
    if (!run.portObstacle.isEmpty())
        notice.details.append(run.portObstacle + u". "_s + run.portRemedy);
    notice.details.append(textOf(run.state()).meaning.toString());
    notice.details.append(adviceOf(run).toString());
    notice.details.append(run.remarks);
    if (notice.kind == Notice::Kind::Good && !run.remarks.isEmpty()) {
        notice.kind = Notice::Kind::Attention;
        notice.next = run.remarks.constFirst();
    }
    return notice;
}

QString supportText(const Run& run, const QString& program, const QString& port,
                    const QString& time)
{
    QStringList lines{program, time,
                      u"Operation: %1, result %2"_s.arg(operationName(run)).arg(run.code),
                      u"Port: "_s + port};
    if (run.baud != 0)
        lines.append(u"Line speed: %1"_s.arg(run.baud));
    if (!run.identifier.isEmpty())
        lines.append(u"Radio: "_s + run.identifier);
    lines.append(u"State of the radio: "_s + textOf(run.state()).name.toString());
    lines.append(
        u"Commands repeated: %1, unexpected answers: %2"_s.arg(run.retries).arg(run.unexpected));
    return lines.join(u'\n') + u"\n\n"_s + noticeOf(run).text() + u'\n';
}

} // namespace fldc
