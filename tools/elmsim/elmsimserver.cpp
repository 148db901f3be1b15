#include "elmsimserver.h"

#include "elmadapter.h"
#include "personality.h"
#include "profilecatalog.h"
#include "replay.h"
#include "runtimecontrol.h"
#include "socketlink.h"
#include "transcript.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

namespace ElmSim {

namespace {

const size_t MAX_LINE = 1024;           // longer input is cut, as a real buffer would

} // namespace

ElmSimServer::ElmSimServer(const ServerOptions& options)
    : m_options(options)
    , m_profileValid(ProfileCatalog::find(options.profile, m_profile))
    , m_control(new RuntimeControl(options))
    , m_transcript(new Transcript)
    , m_replay(new Replay)
    , m_epoch(std::chrono::steady_clock::now())
    , m_listenFd(-1)
    , m_wakePipe{ -1, -1 }
    , m_port(0)
    , m_stopping(false)
    , m_dropRequested(false)
{
    for (EcuProfile& ecu : m_profile.ecus)
        ecu.clearRefusal = options.refuseClear;
    m_original = m_profile;
}

ElmSimServer::~ElmSimServer()
{
    stop();
}

bool ElmSimServer::start()
{
    if (m_thread.joinable()) {
        m_error = "already running";
        return false;
    }
    if (!prepare())
        return false;

    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE;
    addrinfo* found = nullptr;
    const int resolved = ::getaddrinfo(m_options.host.empty() ? nullptr : m_options.host.c_str(),
                                       std::to_string(m_options.port).c_str(), &hints, &found);
    if (resolved != 0 || !found) {
        m_error = "cannot resolve " + m_options.host + ": " + ::gai_strerror(resolved);
        return false;
    }
    m_listenFd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    if (m_listenFd < 0 || ::setsockopt(m_listenFd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)) != 0
        || ::bind(m_listenFd, found->ai_addr, found->ai_addrlen) != 0 || ::listen(m_listenFd, 4) != 0) {
        m_error = "cannot listen on " + m_options.host + ":" + std::to_string(m_options.port) + ": "
                  + std::strerror(errno);
        ::freeaddrinfo(found);
        if (m_listenFd >= 0)
            ::close(m_listenFd);
        m_listenFd = -1;
        return false;
    }
    ::freeaddrinfo(found);

    sockaddr_in bound{};
    socklen_t length = sizeof(bound);
    ::getsockname(m_listenFd, reinterpret_cast<sockaddr*>(&bound), &length);
    m_port = ntohs(bound.sin_port);

    if (::pipe2(m_wakePipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        m_error = std::string("cannot create wake pipe: ") + std::strerror(errno);
        ::close(m_listenFd);
        m_listenFd = -1;
        return false;
    }
    m_stopping = false;
    m_epoch = std::chrono::steady_clock::now();
    m_thread = std::thread(&ElmSimServer::run, this);
    return true;
}

bool ElmSimServer::prepare()
{
    Personality personality;
    TimingModel::Kind kind;
    if (!m_profileValid) {
        m_error = "unknown profile: " + m_options.profile;
        return false;
    }
    if (!Personality::find(m_options.adapter, personality)) {
        m_error = "unknown adapter: " + m_options.adapter;
        return false;
    }
    if (!TimingModel::find(m_options.timing, kind)) {
        m_error = "unknown timing model: " + m_options.timing;
        return false;
    }
    if (!m_options.replayPath.empty() && !m_replay->isLoaded() && !m_replay->load(m_options.replayPath, m_error))
        return false;
    if (!m_options.transcriptPath.empty() && !m_transcript->open(m_options.transcriptPath)) {
        m_error = "cannot open transcript " + m_options.transcriptPath + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

bool ElmSimServer::startOnTerminal(int fd)
{
    if (m_thread.joinable()) {
        m_error = "already running";
        return false;
    }
    if (!prepare())
        return false;
    if (::pipe2(m_wakePipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        m_error = "cannot serve the terminal";
        return false;
    }
    m_terminalFd = fd;
    m_stopping = false;
    m_epoch = std::chrono::steady_clock::now();
    m_thread = std::thread([this] {
        while (!m_stopping) {
            serveClient(m_terminalFd);
            // No one on the other side yet, or gone: look again shortly.
            pollfd wake{ m_wakePipe[0], POLLIN, 0 };
            ::poll(&wake, 1, 100);
        }
    });
    return true;
}

void ElmSimServer::stop()
{
    if (!m_thread.joinable())
        return;
    m_stopping = true;
    wake();
    m_thread.join();
    ::close(m_listenFd);
    ::close(m_wakePipe[0]);
    ::close(m_wakePipe[1]);
    m_listenFd = -1;
    m_wakePipe[0] = m_wakePipe[1] = -1;
}

unsigned short ElmSimServer::port() const
{
    return m_port;
}

std::string ElmSimServer::errorString() const
{
    return m_error;
}

void ElmSimServer::wake()
{
    if (m_wakePipe[1] >= 0) {
        const char byte = 1;
        [[maybe_unused]] const ssize_t n = ::write(m_wakePipe[1], &byte, 1);
    }
}

void ElmSimServer::drainWake()
{
    char bytes[64];
    while (::read(m_wakePipe[0], bytes, sizeof(bytes)) > 0) {
    }
}

bool ElmSimServer::waitReadable(int fd, int timeoutMs)
{
    pollfd fds[2] = { { fd, POLLIN, 0 }, { m_wakePipe[0], POLLIN, 0 } };
    for (;;) {
        const int ready = ::poll(fds, 2, timeoutMs);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        if (fds[1].revents != 0) {
            drainWake();
            if (m_stopping || m_dropRequested)
                return false;
            if (fds[0].revents == 0)
                continue;
        }
        return true;
    }
}

void ElmSimServer::run()
{
    while (!m_stopping) {
        if (!waitReadable(m_listenFd, -1)) {
            m_dropRequested = false;    // nothing to drop between clients
            continue;
        }
        const int client = ::accept4(m_listenFd, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            continue;
        const int on = 1;
        ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
        serveClient(client);
        ::close(client);
    }
}

void ElmSimServer::serveClient(int fd)
{
    drainWake();
    m_dropRequested = false;
    m_control->restartDropCount();
    SocketLink link(fd, m_wakePipe[0]);
    ElmAdapter adapter(m_options, m_profile, m_vehicleMutex, *m_control,
                       m_transcript->isOpen() ? m_transcript.get() : nullptr,
                       m_replay->isLoaded() ? m_replay.get() : nullptr, link, m_epoch);

    std::string line;
    line.reserve(64);
    bool lastWasCr = false;
    char buffer[4096];
    while (!m_stopping && !m_dropRequested && !link.failed()) {
        if (!waitReadable(fd, -1))
            return;
        const ssize_t n = ::read(fd, buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;
        termios settings{};
        if (fd == m_terminalFd && m_options.lineSpeed != 0
            && (::tcgetattr(fd, &settings) != 0 || ::cfgetospeed(&settings) != m_options.lineSpeed)) {
            // Read at the wrong rate: the host gets noise, never a prompt.
            link.send("\xFE\x80\xF8");
            continue;
        }
        for (ssize_t i = 0; i < n; ++i) {
            const char c = buffer[i];
            // CR ends a command; LF does too, except straight after a CR.
            const bool endOfLine = c == '\r' || (c == '\n' && !lastWasCr);
            lastWasCr = c == '\r';
            if (c == '\n' && !endOfLine)
                continue;
            if (!endOfLine) {
                if (c != '\0' && line.size() < MAX_LINE)
                    line.push_back(c);
                continue;
            }
            if (!adapter.handleLine(line))
                return;
            line.clear();
            if (m_stopping || m_dropRequested || link.failed())
                return;
        }
    }
}

void ElmSimServer::setDelay(unsigned int ms)
{
    m_control->setDelay(ms);
}

void ElmSimServer::setSilent(bool silent)
{
    m_control->setSilent(silent);
}

void ElmSimServer::injectError(const std::string& word, int count)
{
    m_control->injectError(word, count);
}

void ElmSimServer::setDropAfter(int requests)
{
    m_control->setDropAfter(requests);
}

void ElmSimServer::dropNow()
{
    m_dropRequested = true;
    wake();
}

void ElmSimServer::setGarbage(unsigned int bytes)
{
    m_control->setGarbage(bytes);
}

int ElmSimServer::requestCount() const
{
    return m_control->requestCount();
}

std::vector<std::string> ElmSimServer::requestLog() const
{
    return m_control->requestLog();
}

ExchangeTiming ElmSimServer::lastExchange() const
{
    return m_control->lastExchange();
}

const Profile& ElmSimServer::profile() const
{
    return m_profile;
}

void ElmSimServer::resetVehicle()
{
    std::lock_guard<std::mutex> lock(m_vehicleMutex);
    m_profile = m_original;
}

} // namespace ElmSim
