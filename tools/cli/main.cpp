#include "cliapplication.h"
#include "consolelogger.h"
#include "libobd.h"
#include "session.h"
#include "trlog.h"

#include <QCoreApplication>

#include <csignal>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

void onSignal(int)
{
    Cli::CliApplication::interrupted() = true;
    // An opening under way gives up at once instead of running its course.
    Cli::Session::cancelOpening();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("zarvane-cli");
    QCoreApplication::setOrganizationName("Quillot");
    std::vector<std::string> args(argv + 1, argv + argc);

    static Obd::ConsoleLogger console;
    for (const std::string& arg : args) {
        if (arg == "-v" || arg == "--verbose")
            Obd::TrLog::addLogger(&console);
    }
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    // A link that dies under a write must give an error, not end the program.
    std::signal(SIGPIPE, SIG_IGN);

    Obd::libInit();
    Cli::CliApplication cli(std::cout, std::cerr, std::cin);
    cli.setInteractive(isatty(STDIN_FILENO), isatty(STDERR_FILENO));
    int code = cli.run(args);
    Obd::libCleanup();
    return code;
}
