#include "ui/session/SessionView.h"

#include "manager/clsDLManager.h"
#include "platform/IClock.h"
#include "platform/IDesktopSession.h"
#include "platform/IProgramInfo.h"
#include "platform/Platform.h"
#include "ui/StatusBar.h"
#include "ui/logic/session/Notice.h"
#include "ui/session/NoticeStrip.h"
#include "ui/session/PlanWindow.h"
#include "ui/session/TextWindow.h"
#include "ui/session/TransferBar.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>

#include <chrono>
#include <utility>

namespace fldc {

using namespace std::chrono_literals;

namespace {

// Whoever waits longer than this has turned to something else.
constexpr auto longRun = 10s;

QString questionText(const Run& run)
{
    const session::StateText& radio = textOf(run.state());
    return SessionView::tr("Stop here? The radio is being written, and that goes on until you "
                           "answer.\n\nIf it stopped now: ") +
           radio.meaning + u' ' + radio.advice;
}

} // namespace

SessionView::SessionView(DownloadWindow& window, Surroundings surroundings)
    : QObject(&surroundings.view), m_window(&window), m_around(std::move(surroundings)),
      m_notes(window, m_around.platform, {[this] { runChanged(); }, [this] { runEnded(); }})
{
    m_around.cancel.hide();
    m_around.cancel.setFocusPolicy(Qt::TabFocus);
    m_around.cancel.setToolTip(tr("End what is going on with the radio"));
    connect(&m_around.cancel, &QPushButton::clicked, this, &SessionView::askForCancel);
    connect(&m_around.strip, &NoticeStrip::detailsWanted, this, &SessionView::showDetails);
    connect(&m_around.strip, &NoticeStrip::copyWanted, this, &SessionView::copy);
    makePlanButton();
    connect(&m_seconds, &QTimer::timeout, this, &SessionView::showProgress);
}

void SessionView::makePlanButton()
{
    m_planButton = m_around.status.addButton(QStringLiteral("cmdPlan"), tr("&Plan..."));
    m_planButton->setAccessibleName(tr("Plan"));
    m_planButton->setToolTip(tr("What a download would write"));
    m_planButton->setFocusPolicy(Qt::TabFocus);
    m_planButton->hide();
    connect(m_planButton, &QToolButton::clicked, this, &SessionView::showPlan);
}

void SessionView::detach()
{
    if (m_window == nullptr)
        return;
    m_notes.detach();
    m_window = nullptr;
    m_seconds.stop();
    if (m_plan)
        m_plan->close();
    if (m_around.desktop != nullptr)
        m_around.desktop->allowEnd();
}

void SessionView::windowChanged(WindowPart part)
{
    if (m_window == nullptr)
        return;
    if (part == WindowPart::Progress)
        showProgress();
    if (part == WindowPart::Remark && !m_window->remark().isEmpty()) {
        m_notes.remark(m_window->remark());
        if (!m_notes.running())
            m_around.strip.showNotice(noticeOf(m_notes.run()));
    }
    if (part == WindowPart::Configurations && !m_window->configurations().rows().empty())
        m_planButton->show();
    if (part == WindowPart::Configurations || part == WindowPart::Controls)
        refreshPlan();
}

void SessionView::showProgress()
{
    if (m_window == nullptr)
        return;
    QString text = m_notes.progressText();
    if (m_cancelling && !text.isEmpty())
        text += tr(" · ending");
    m_around.bar.showText(text);
    m_around.bar.setValue(m_notes.percent().value_or(m_window->progress()));
    m_around.bar.setAlive(m_notes.running() && !m_notes.percent());
    const QString file = m_notes.fileText();
    m_around.bar.setToolTip(file.isEmpty() ? tr("How much of the present file has been written")
                                           : file);
}

void SessionView::runChanged()
{
    const Run& run = m_notes.run();
    if (!m_seconds.isActive()) {
        m_around.strip.hide();
        if (m_details)
            m_details->close();
        m_cancelling = false;
        m_around.cancel.setEnabled(true);
        m_around.cancel.show();
        if (m_around.desktop != nullptr)
            m_around.desktop->prepare();
        m_seconds.start(1s);
    }
    if (m_around.desktop != nullptr && run.flashAtRisk())
        m_around.desktop->preventEnd(tr("The flash of a radio is being written"));
    if (m_question && m_question->text() != questionText(run))
        m_question->setText(questionText(run));
    showProgress();
}

void SessionView::runEnded()
{
    m_seconds.stop();
    // A control that goes hands the focus to the next one, where the user's next key would count.
    if (m_around.cancel.hasFocus())
        m_around.view.findChild<QWidget*>(QStringLiteral("txtCurrentDownload"))->setFocus();
    m_around.cancel.hide();
    for (const QPointer<QMessageBox>& box : {m_question, m_refusal}) {
        if (box)
            box->close();
    }
    if (m_around.desktop != nullptr)
        m_around.desktop->allowEnd();
    showProgress();
    refreshPlan();
    m_window->operationEnded();
    // Files that were read well are nothing to tell of yet.
    const Run& run = m_notes.run();
    if (!run.operation && run.code == 0)
        return;
    m_around.strip.showNotice(noticeOf(run));
    if (run.ended - run.begun > longRun)
        tellAway();
}

void SessionView::tellAway()
{
    if (QApplication::activeWindow() != nullptr || !m_around.view.isVisible())
        return;
    QApplication::alert(&m_around.view);
    if (m_around.desktop != nullptr)
        m_around.desktop->notify(m_window->caption(), noticeOf(m_notes.run()).headline);
}

void SessionView::askForCancel()
{
    if (m_window == nullptr || !m_notes.running())
        return;
    if (!m_notes.run().flashAtRisk())
        return cancelRun();
    if (m_question) {
        m_question->raise();
        return m_question->activateWindow();
    }
    m_question =
        makeBox(QStringLiteral("cancelQuestion"), tr("Stop Writing"), questionText(m_notes.run()));
    m_question->setIcon(QMessageBox::Warning);
    auto* stop = m_question->addButton(tr("&Stop Writing"), QMessageBox::DestructiveRole);
    auto* goOn = m_question->addButton(tr("&Go On"), QMessageBox::RejectRole);
    m_question->setDefaultButton(goOn);
    m_question->setEscapeButton(goOn);
    connect(stop, &QPushButton::clicked, this, &SessionView::cancelRun);
    m_question->show();
}

void SessionView::cancelRun()
{
    if (m_window == nullptr || !m_notes.running() || m_window->downLoadManager() == nullptr)
        return;
    m_cancelling = true;
    m_around.cancel.setEnabled(false);
    showProgress();
    m_window->downLoadManager()->cancelOperation();
}

void SessionView::sayWhyOpen()
{
    QApplication::alert(&m_around.view);
    if (m_refusal)
        return m_refusal->raise();
    m_refusal = makeBox(QStringLiteral("closeRefusal"), tr("Not Closed"),
                        m_notes.running()
                            ? tr("The window stays open because it is at work with the radio. "
                                 "\"Cancel\" beside the progress bar ends that.")
                            : tr("The window stays open because a question or a report of its "
                                 "own is still open."));
    m_refusal->addButton(tr("&OK"), QMessageBox::AcceptRole);
    m_refusal->show();
}

QMessageBox* SessionView::makeBox(const QString& name, const QString& title, const QString& text)
{
    auto* box = new QMessageBox(QMessageBox::Information, title, text, QMessageBox::NoButton,
                                &m_around.view);
    box->setObjectName(name);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::NonModal);
    return box;
}

void SessionView::showDetails()
{
    if (m_details) {
        m_details->raise();
        return m_details->activateWindow();
    }
    auto* details =
        new TextWindow(tr("What Happened"), noticeOf(m_notes.run()).text(), &m_around.view);
    connect(details, &TextWindow::copyWanted, this, &SessionView::copy);
    m_details = details;
    details->show();
}

void SessionView::showPlan()
{
    if (m_window == nullptr)
        return;
    if (m_plan) {
        m_plan->raise();
        return m_plan->activateWindow();
    }
    m_plan = new PlanWindow(m_around.platform.files, &m_around.view);
    connect(m_plan, &PlanWindow::chooseWanted, this, [this] { m_around.chooseFiles(); });
    connect(m_plan, &PlanWindow::downloadWanted, this,
            [this](const QStringList& paths) { m_around.download(paths); });
    refreshPlan();
    m_plan->show();
}

void SessionView::refreshPlan()
{
    if (m_plan && m_window != nullptr)
        m_plan->refresh(*m_window, m_notes.refused());
}

void SessionView::copy()
{
    if (m_window == nullptr)
        return;
    QGuiApplication::clipboard()->setText(supportText(m_notes.run(), m_window->caption(),
                                                      portDescription(),
                                                      dateTimeText(m_around.platform.clock.now())));
}

QString SessionView::portDescription() const
{
    const IPortListing::Details port = m_window->chosenPort();
    QStringList texts{m_window->portText()};
    for (const QString& text : {port.path, port.adapter, port.serialNumber}) {
        if (!text.isEmpty())
            texts.append(text);
    }
    return texts.join(QStringLiteral(", "));
}

} // namespace fldc
