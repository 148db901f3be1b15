#ifndef TEST_SIMUITEST_H
#define TEST_SIMUITEST_H

#include "elmsimserver.h"
#include "uiharness.h"

#include <QString>

#include <memory>
#include <string>

// The whole user interface against the in-process simulator, connected the
// way a person does it: Wi-Fi settings, then the connection manager.
class SimUiTest : public UiTest
{
protected:
    static const int CONNECT_WAIT_MS = 20000;
    static const int READ_WAIT_MS = 15000;

    void TearDown() override;

    // Quick options: no boot or search delay.
    static ElmSim::ServerOptions options(const std::string& profile = "can11", bool frozen = false);
    void startSim(const ElmSim::ServerOptions& options);
    // Starts the simulator and opens the connection; false on failure.
    bool connectToSim(const ElmSim::ServerOptions& options);
    bool connectToSim() { return connectToSim(options()); }

    // Opens a screen through the navigation model and waits for the page.
    QObject* open(int view);
    QVariant pageProperty(const char* name) const;

    std::unique_ptr<ElmSim::ElmSimServer> sim;
};

#endif
