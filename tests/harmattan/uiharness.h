#ifndef TEST_UIHARNESS_H
#define TEST_UIHARNESS_H

#include <QObject>
#include <QQuickView>
#include <QString>
#include <QVariant>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>

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
    UiHarness();
    ~UiHarness();

    bool loaded() const;
    QQuickView& view() { return m_view; }
    QObject* root() const;
    Harmattan::Zarvane* app() const { return m_app.get(); }
    QObject* mainView() const;
    QObject* banner() const;
    QObject* dialog() const;
    QObject* currentPage() const;
    int depth() const;
    QVariant mainProperty(const char* name) const;

    // Presses and releases the mouse in the middle of the named item, as a person would.
    bool click(QObject* parent, const char* objectName);

    // Pops back to the main view and waits for the stack to settle.
    void back();
    bool settle(int timeoutMs = 5000);
    // Saves the window into <build>/screenshots/<name>.png.
    bool screenshot(const QString& name);

    // Destroys the application object and the view: what a restart does.
    void destroyApp();

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

    std::unique_ptr<UiHarness> ui;
};

// Runs the event loop until condition holds or timeoutMs passed.
bool waitUntil(const std::function<bool()>& condition, int timeoutMs);
// Runs the event loop for ms.
void spin(int ms);
// Empties the test's settings store (never the user's).
void clearSettingsStore();
QString settingsStorePath();

#endif
