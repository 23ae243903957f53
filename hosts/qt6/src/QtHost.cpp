#include "QtHost.h"

#include <gui/NativeView.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/port/HostedView.h>
#include <gui/port/WindowSystem.h>

#include <QAbstractEventDispatcher>
#include <QClipboard>
#include <QGuiApplication>
#include <QScreen>
#include <QStyleHints>
#include <QThread>

#include <algorithm>
#include <utility>

namespace gui::qt
{

namespace
{

// Widgets keep their context when they move to another window. Qt wants to know before there is an application.
void shareContexts() { QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts); }
Q_CONSTRUCTOR_FUNCTION(shareContexts)

QClipboard::Mode toMode(gui::Clipboard::Kind kind)
{
    return kind == gui::Clipboard::Kind::Copied ? QClipboard::Clipboard : QClipboard::Selection;
}

gui::RunLoop& runLoop() { return gui::WindowSystem::instance().getRunLoop(); }

} // namespace

void QtHost::use()
{
    static const bool isUsed = gui::WindowSystem::setHost(std::make_unique<QtHost>());
    static_cast<void>(isUsed);
}

QtHost::QtHost()
{
    _timer.setTimerType(Qt::PreciseTimer);
    _timer.setSingleShot(true);
    QObject::connect(&_timer, &QTimer::timeout, &_context, [this] { takeTurn(); });
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &_context,
                     [this] { beforeSleep(); });
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    QObject::connect(QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, &_context,
                     [] { gui::WindowSystem::instance().tellColorScheme(); });
#endif
}

void QtHost::wakeUp()
{
    if (QAbstractEventDispatcher* const pDispatcher = QCoreApplication::eventDispatcher())
        pDispatcher->wakeUp();
}

void QtHost::wakeAt(gui::RunLoop::Time time)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - gui::RunLoop::Clock::now());
    const auto wanted = std::max(left, std::chrono::milliseconds(0));
    if (!_timer.isActive() || _timer.remainingTimeAsDuration() > wanted)
        _timer.start(wanted);
}

void QtHost::beforeSleep()
{
    // Whatever was current, Qt may have changed it.
    gui::gl::CurrentContext::set(nullptr);
    if (isServing())
        return;
    if (const std::optional<gui::RunLoop::Time> due = runLoop().getNextDue())
        wakeAt(*due);
    else
        _timer.stop();
}

// A loop that starts in there, of a dialog, is Qt's own.
bool QtHost::isServing() const { return _isServing && QThread::currentThread()->loopLevel() == _loopLevel; }

void QtHost::takeTurn()
{
    if (isServing())
        return;
    const bool wasInTurn = std::exchange(_isInTurn, true);
    runLoop().step(0);
    _isInTurn = wasInTurn;
}

void QtHost::serveEvents(const std::optional<gui::RunLoop::Time>& until)
{
    if (_isInTurn)
        return;
    const bool wasServing = std::exchange(_isServing, true);
    const int outerLevel = std::exchange(_loopLevel, QThread::currentThread()->loopLevel());
    const bool mayWait = !until || *until > gui::RunLoop::Clock::now();
    if (until && mayWait)
        wakeAt(*until);
    QCoreApplication::processEvents(mayWait ? QEventLoop::WaitForMoreEvents : QEventLoop::AllEvents);
    _loopLevel = outerLevel;
    _isServing = wasServing;
}

double QtHost::getDisplayRate(const gui::NativeView* pView) const
{
    const gui::gl::HostWidget* const pWidget = gui::gl::HostedView::widgetOf(pView);
    const QScreen* const pScreen = QGuiApplication::primaryScreen();
    return pWidget != nullptr ? pWidget->getDisplayRate() : pScreen != nullptr ? pScreen->refreshRate() : 0;
}

float QtHost::getMainDisplayScale() const
{
    const QScreen* const pScreen = QGuiApplication::primaryScreen();
    return pScreen != nullptr ? float(pScreen->devicePixelRatio()) : 1;
}

std::vector<gui::DisplayInfo> QtHost::getDisplays() const
{
    std::vector<gui::DisplayInfo> displays;
    for (const QScreen* const pScreen : QGuiApplication::screens())
    {
        const QRect place = pScreen->geometry();
        displays.push_back({pScreen->name().toStdString(),
                            {{double(place.x()), double(place.y())}, {double(place.width()), double(place.height())}},
                            float(pScreen->devicePixelRatio()),
                            pScreen->refreshRate()});
    }
    return displays;
}

gui::ColorScheme QtHost::getColorScheme() const
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    const Qt::ColorScheme scheme = QGuiApplication::styleHints()->colorScheme();
    if (scheme != Qt::ColorScheme::Unknown)
        return scheme == Qt::ColorScheme::Dark ? gui::ColorScheme::Dark : gui::ColorScheme::Light;
#endif
    return gui::ColorScheme::Unknown;
}

bool QtHost::setClipboardText(gui::Clipboard::Kind kind, const std::string& text)
{
    QClipboard* const pClipboard = QGuiApplication::clipboard();
    if (kind != gui::Clipboard::Kind::Copied && !pClipboard->supportsSelection())
        return false;
    pClipboard->setText(QString::fromStdString(text), toMode(kind));
    return true;
}

std::string QtHost::getClipboardText(gui::Clipboard::Kind kind)
{
    return QGuiApplication::clipboard()->text(toMode(kind)).toStdString();
}

bool QtHost::hasClipboardText(gui::Clipboard::Kind kind) { return !getClipboardText(kind).empty(); }

} // namespace gui::qt
