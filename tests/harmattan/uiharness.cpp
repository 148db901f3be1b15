#include "uiharness.h"

#include "connectionmanager.h"
#include "logcapture.h"
#include "navigationmodel.h"
#include "settingsmodel.h"
#include "zarvane.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QMouseEvent>
#include <QQmlProperty>
#include <QQuickItem>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

namespace {

// Sends every QSettings of the test process to a temporary store.
class SettingsStoreEnvironment : public ::testing::Environment
{
    void SetUp() override
    {
        for (QSettings::Format format : { QSettings::NativeFormat, QSettings::IniFormat })
            QSettings::setPath(format, QSettings::UserScope, m_dir.path());
    }
    QTemporaryDir m_dir;
};

::testing::Environment* const storeEnvironment
    = ::testing::AddGlobalTestEnvironment(new SettingsStoreEnvironment);

} // namespace

bool waitUntil(const std::function<bool()>& condition, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(5);
    }
    return true;
}

void deliverPosted()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void clearSettingsStore()
{
    QSettings().clear();
}

UiHarness::UiHarness(bool transitions)
{
    static const bool registered = (Harmattan::Zarvane::registerQmlTypes(), true);
    Q_UNUSED(registered);
    m_view.setResizeMode(QQuickView::SizeRootObjectToView);
    m_view.setSource(QUrl("qrc:/qml/main.qml"));
    m_view.resize(480, 854);
    if (!m_view.rootObject())
        return;
    m_app.reset(new Harmattan::Zarvane(m_view.rootObject(), m_view.rootContext()));
    const char* const transitionNames[] = { "pushEnter", "pushExit", "popEnter", "popExit", "replaceEnter",
                                            "replaceExit" };
    for (QQuickItem* item : m_view.rootObject()->findChildren<QQuickItem*>())
        for (const char* name : transitionNames)
            if (item->inherits("QQuickStackView") && !transitions)
                QQmlProperty(item, name).write(QVariant::fromValue<QObject*>(nullptr));
    m_view.show();
    waitUntil([this] { return m_view.isExposed(); }, 5000);
}

UiHarness::~UiHarness() = default;

QObject* UiHarness::open(int view)
{
    m_app->navigationModel()->activateView(static_cast<Harmattan::NavigationModel::View>(view));
    settle();
    return currentPage();
}

bool UiHarness::tap(QQuickItem* item)
{
    if (!item || !settle() || !item->isVisible())
        return false;
    const QPointF local = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    const QPointF global = m_view.mapToGlobal(local.toPoint());
    for (Qt::MouseButtons held : { Qt::MouseButtons(Qt::LeftButton), Qt::MouseButtons(Qt::NoButton) }) {
        QMouseEvent event(held ? QEvent::MouseButtonPress : QEvent::MouseButtonRelease, local, local, global,
                          Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&m_view, &event);
        QCoreApplication::processEvents();
    }
    return true;
}

QQuickItem* UiHarness::row(QObject* parent, const char* listName, int index)
{
    QObject* list = parent ? parent->findChild<QObject*>(listName) : nullptr;
    QQuickItem* item = nullptr;
    if (list && settle())
        QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem*, item), Q_ARG(int, index));
    return item;
}

QStringList UiHarness::rowTexts(QObject* parent, const char* listName, int index)
{
    QStringList texts;
    if (QQuickItem* item = row(parent, listName, index))
        for (QQuickItem* child : item->findChildren<QQuickItem*>())
            if (child->inherits("QQuickText") && child->isVisible())
                texts << child->property("text").toString();
    return texts;
}

bool UiHarness::settle(int timeoutMs)
{
    if (!waitUntil([this] { return !m_view.rootObject()->property("busy").toBool(); }, timeoutMs))
        return false;
    int frames = 0;
    const QMetaObject::Connection counting
        = QObject::connect(&m_view, &QQuickWindow::frameSwapped, [&frames] { ++frames; });
    m_view.update();
    const bool drawn = waitUntil([&frames] { return frames > 0; }, timeoutMs);
    QObject::disconnect(counting);
    return drawn;
}

void UiHarness::picture(const QString& name)
{
    const QString dir = qEnvironmentVariable("ZARVANE_SCREENSHOTS");
    if (dir.isEmpty() || !settle())
        return;
    QDir().mkpath(dir);
    EXPECT_TRUE(m_view.grabWindow().save(dir + "/" + name + ".png")) << name.toStdString();
}

void UiTest::SetUp()
{
    clearSettingsStore();
    LogCapture::instance().clear();
    ui.reset(new UiHarness(withTransitions()));
    ASSERT_TRUE(ui->loaded()) << "main.qml did not load";
}

void UiTest::TearDown()
{
    ui.reset();
    // Items the screens released with deleteLater() go now, not with the process.
    deliverPosted();
}

void SimUiTest::startSim(const ElmSim::ServerOptions& options)
{
    sim.reset(new ElmSim::ElmSimServer(options));
    ASSERT_TRUE(sim->start()) << sim->errorString();
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    settings->setConnectionMethod(1);
    settings->setIpAddress("127.0.0.1");
    settings->setIpPort(QString::number(sim->port()));
}

bool SimUiTest::connectToSim(const ElmSim::ServerOptions& options)
{
    startSim(options);
    Harmattan::ConnectionManager* manager = ui->app()->connectionManager();
    return sim && manager->openConnection()
           && waitUntil([&] { return manager->isConnected() && mainStatus() == 2; }, CONNECT_WAIT_MS);
}

bool SimUiTest::codesShown(QObject* page, int stored, int pending)
{
    stored = stored < 0 ? simCodes(true).size() : stored;
    pending = pending < 0 ? simCodes(false).size() : pending;
    return waitUntil([&] { return !page->property("busy").toBool() && page->property("storedDtcCount") == stored
                                  && page->property("pendingDtcCount") == pending; }, READ_WAIT_MS);
}

QStringList SimUiTest::simCodes(bool stored) const
{
    QStringList codes;
    for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
        for (const std::string& code : stored ? ecu.storedDtcs : ecu.pendingDtcs)
            codes << QString::fromStdString(code);
    return codes;
}
