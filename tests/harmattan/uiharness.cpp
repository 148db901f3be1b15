#include "uiharness.h"

#include "logcapture.h"
#include "zarvane.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QImage>
#include <QMetaObject>
#include <QMouseEvent>
#include <QQmlContext>
#include <QQuickItem>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {

// Sends every QSettings of the test process to a temporary store.
class SettingsStoreEnvironment : public ::testing::Environment
{
public:
    void SetUp() override
    {
        m_dir.reset(new QTemporaryDir());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir->path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_dir->path());
        s_path = m_dir->path();
    }
    void TearDown() override { m_dir.reset(); }

    static QString s_path;

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

QString SettingsStoreEnvironment::s_path;

::testing::Environment* const storeEnvironment
    = ::testing::AddGlobalTestEnvironment(new SettingsStoreEnvironment);

bool typesRegistered = false;

} // namespace

bool waitUntil(const std::function<bool()>& condition, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
    return true;
}

void spin(int ms)
{
    waitUntil([] { return false; }, ms);
}

void clearSettingsStore()
{
    QSettings settings;
    settings.clear();
    settings.sync();
}

QString settingsStorePath()
{
    return SettingsStoreEnvironment::s_path;
}

UiHarness::UiHarness()
{
    if (!typesRegistered) {
        Harmattan::Zarvane::registerQmlTypes();
        typesRegistered = true;
    }
    m_view.setResizeMode(QQuickView::SizeRootObjectToView);
    m_view.setSource(QUrl("qrc:/qml/main.qml"));
    m_view.resize(480, 854);
    if (m_view.rootObject())
        m_app.reset(new Harmattan::Zarvane(m_view.rootObject(), m_view.rootContext()));
    m_view.show();
    waitUntil([this] { return m_view.isExposed(); }, 5000);
}

UiHarness::~UiHarness()
{
    destroyApp();
}

void UiHarness::destroyApp()
{
    m_app.reset();
}

bool UiHarness::loaded() const
{
    return m_view.status() == QQuickView::Ready && m_view.rootObject() && m_app;
}

QObject* UiHarness::root() const
{
    return m_view.rootObject();
}

QObject* UiHarness::mainView() const
{
    return root() ? root()->findChild<QObject*>("mainView") : nullptr;
}

QObject* UiHarness::banner() const
{
    return root() ? root()->findChild<QObject*>("infoBanner") : nullptr;
}

QObject* UiHarness::dialog() const
{
    return root() ? root()->findChild<QObject*>("queryDialog") : nullptr;
}

QObject* UiHarness::currentPage() const
{
    return root() ? root()->property("currentPage").value<QObject*>() : nullptr;
}

int UiHarness::depth() const
{
    return root() ? root()->property("depth").toInt() : 0;
}

QVariant UiHarness::mainProperty(const char* name) const
{
    return mainView() ? mainView()->property(name) : QVariant();
}

void UiHarness::back()
{
    QMetaObject::invokeMethod(root(), "back");
    settle();
}

bool UiHarness::click(QObject* parent, const char* objectName)
{
    QQuickItem* item = parent ? parent->findChild<QQuickItem*>(objectName) : nullptr;
    if (!item || !item->isVisible())
        return false;
    const QPointF local = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    const QPointF global = m_view.mapToGlobal(local.toPoint());
    QMouseEvent press(QEvent::MouseButtonPress, local, local, global, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&m_view, &press);
    spin(30);
    QMouseEvent release(QEvent::MouseButtonRelease, local, local, global, Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&m_view, &release);
    spin(30);
    return true;
}

bool UiHarness::settle(int timeoutMs)
{
    return waitUntil([this] { return !root()->property("busy").toBool(); }, timeoutMs);
}

bool UiHarness::screenshot(const QString& name)
{
    settle();
    spin(400);
    const QString dir = QStringLiteral(ZARVANE_BINARY_DIR "/screenshots");
    QDir().mkpath(dir);
    QImage image = m_view.grabWindow();
    return !image.isNull() && image.save(dir + "/" + name + ".png");
}

void UiTest::SetUp()
{
    clearSettingsStore();
    LogCapture::instance().clear();
    ui.reset(new UiHarness());
    ASSERT_TRUE(ui->loaded()) << "main.qml did not load";
}

void UiTest::TearDown()
{
    ui.reset();
    // Items the screens released with deleteLater() go now, not with the process.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
