#include "fldc/output/ProgressView.h"

#include "fldc/output/Terminal.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr int barWidth = 24;

QString figures(const Progress& progress)
{
    QString text = u"%1 %  %2 B/s"_s.arg(progress.percent, 3)
                       .arg(static_cast<qint64>(std::llround(progress.bytesPerSecond)), 6);
    if (progress.secondsLeft)
        text += u"  "_s + timeText(*progress.secondsLeft) + u" left"_s;
    return text + u"  %1 baud"_s.arg(progress.baud);
}

} // namespace

QString barText(std::int32_t percent)
{
    const int filled = std::clamp(percent, 0, 100) * barWidth / 100;
    return u'[' + QString(filled, u'#') + QString(barWidth - filled, u'.') + u']';
}

QString timeText(double seconds)
{
    const auto whole = static_cast<int>(std::ceil(std::min(seconds, 359999.0)));
    if (whole < 60)
        return u"%1 s"_s.arg(whole);
    return u"%1 min %2 s"_s.arg(whole / 60).arg(whole % 60, 2, 10, QChar(u'0'));
}

QString ProgressView::next(const Progress& progress, int columns)
{
    const QString file = oneLine(progress.file);
    // A smaller percentage of the same file is its next target.
    const bool begins = file != m_file || progress.percent < m_percent;
    m_file = file;
    m_percent = progress.percent;
    if (!m_redraws) {
        const std::int32_t tens = progress.percent / 10;
        const bool isNew = begins || tens != m_tens;
        m_tens = tens;
        return isNew ? file + u"  "_s + figures(progress) + u'\n' : QString();
    }
    const QString before = begins ? end() : QString();
    m_lineOpen = true;
    const QString line = file + u"  "_s + barText(progress.percent) + u' ' + figures(progress);
    // A line that fills the terminal would wrap, and could not be drawn over.
    return before + u"\r\x1b[K"_s + line.left(columns - 1);
}

QString ProgressView::end()
{
    return std::exchange(m_lineOpen, false) ? u"\n"_s : QString();
}

} // namespace fldc::cli
