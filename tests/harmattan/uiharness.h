#ifndef TEST_UIHARNESS_H
#define TEST_UIHARNESS_H

#include "elmsimserver.h"
#include "simlink.h"

#include <QQuickView>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

class QQuickItem;

// Readable QString values in failure messages.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace Harmattan {
class Zarvane;
}

// The real root document in an offscreen view with the application object
// built over it, as main does.
class UiHarness
{
public:
    // Without transitions the page stack swaps pages at once: Qt's stock
    // animations, not ours, and most of a test's time otherwise.
    explicit UiHarness(bool transitions = false);
    ~UiHarness();

    bool loaded() const { return m_view.status() == QQuickView::Ready && m_view.rootObject() && m_app; }
    QQuickView& view() { return m_view; }
    Harmattan::Zarvane* app() const { return m_app.get(); }
    QObject* find(const char* name) const { return m_view.rootObject()->findChild<QObject*>(name); }
    QObject* mainView() const { return find("mainView"); }
    QObject* banner() const { return find("infoBanner"); }
    QObject* dialog() const { return find("queryDialog"); }
    QObject* currentPage() const { return m_view.rootObject()->property("currentPage").value<QObject*>(); }
    int depth() const { return m_view.rootObject()->property("depth").toInt(); }
    QVariant mainProperty(const char* name) const { return mainView()->property(name); }

    // Opens a screen through the navigation model and waits for its page.
    QObject* open(int view);
    // Presses and releases the mouse in the middle of the item once the
    // window shows it, as a person would; false when it is missing or hidden.
    bool tap(QQuickItem* item);
    bool tap(QObject* parent, const char* name) { return tap(parent->findChild<QQuickItem*>(name)); }
    // The delegate of a list's row, as laid out on screen, and the texts it shows.
    QQuickItem* row(QObject* parent, const char* listName, int index);
    QStringList rowTexts(QObject* parent, const char* listName, int index);
    // The text property of the named item below parent.
    QString text(QObject* parent, const char* name) const
    {
        QObject* item = parent->findChild<QObject*>(name);
        return item ? item->property("text").toString() : QString("<no %1>").arg(name);
    }

    // Pops back and waits for the stack to settle.
    void back()
    {
        QMetaObject::invokeMethod(m_view.rootObject(), "back");
        settle();
    }
    // Waits for the page stack to stop moving and the window to draw a frame:
    // positioners and lists lay out, and apply model changes, for a frame.
    bool settle(int timeoutMs = 5000);
    // With ZARVANE_SCREENSHOTS naming a folder, saves the window there as
    // <name>.png for a person to look at (scripts/screenshots.sh).
    void picture(const QString& name);
    static bool picturesWanted() { return !qEnvironmentVariableIsEmpty("ZARVANE_SCREENSHOTS"); }

private:
    QQuickView m_view;
    std::unique_ptr<Harmattan::Zarvane> m_app;
};

// A fresh store, a fresh log and the whole user interface for each test.
class UiTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
    virtual bool withTransitions() const { return false; }

    std::unique_ptr<UiHarness> ui;
};

// The same against the in-process simulator, set up the way a person does
// it: Wi-Fi settings, then the connection.
class SimUiTest : public UiTest
{
protected:
    static const int CONNECT_WAIT_MS = 20000;
    static const int READ_WAIT_MS = 15000;

    void TearDown() override
    {
        UiTest::TearDown();
        sim.reset();
    }
    // Quick options: no boot or search delay, values frozen.
    static ElmSim::ServerOptions options(const std::string& profile = "can11")
    {
        return SimLink::quickOptions(profile);
    }
    // Starts the simulator and points the settings at it.
    void startSim(const ElmSim::ServerOptions& options = SimUiTest::options());
    // The same, then opens the connection; false on failure.
    bool connectToSim(const ElmSim::ServerOptions& options = SimUiTest::options());
    int mainStatus() const { return ui->mainProperty("connectionStatus").toInt(); }
    // The adapter's codes of every ECU in answer order (the first ECU's first).
    QStringList simCodes(bool stored) const;
    // Waits for the trouble-code screen to show that many codes (-1: the adapter's).
    bool codesShown(QObject* page, int stored = -1, int pending = -1);

    std::unique_ptr<ElmSim::ElmSimServer> sim;
};

// Runs the event loop, deferred deletes included as a running application
// does, until condition holds or timeoutMs passed.
bool waitUntil(const std::function<bool()>& condition, int timeoutMs);
// Delivers what is already queued for this thread, deferred deletes included.
void deliverPosted();
// Empties the test's settings store (never the user's).
void clearSettingsStore();

#endif
